// A file descriptor that closes itself. Only for sources of this folder.
#pragma once

#include <utility>

#include <unistd.h>

namespace platform {

class Descriptor {
public:
    explicit Descriptor(int number = -1)
      : number_(number) {}
    ~Descriptor() { reset(); }
    Descriptor(Descriptor&& other) noexcept
      : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int get() const { return number_; }
    bool is_open() const { return number_ >= 0; }
    /// False when the system reports an error (see errno), for instance of a write put off.
    bool reset(int number = -1) {
        const int old = std::exchange(number_, number);
        return old < 0 || ::close(old) == 0;
    }

private:
    int number_;
};

} // namespace platform
