// How much of the processor a thread claims.
#pragma once

namespace platform {

/// The calling thread, and those that it starts from now on, give way to the others of this and
/// other programs. For good: an ordinary user cannot take it back. A thread that gives way already,
/// or more, stays as it is.
void give_way() noexcept;
/// How far the calling thread gives way: 0 as usual, 1 to 19 more and more.
int giving_way() noexcept;

} // namespace platform
