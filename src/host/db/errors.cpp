// Names of the status codes.
#include "host/db/errors.h"

#include <iterator>

namespace {

constexpr const char* kTexts[] = {"Ok",
                                  "NotImplementedYet",
                                  "InvalidInput",
                                  "NullObjectId",
                                  "WasErased",
                                  "WasOpenForRead",
                                  "WasOpenForWrite",
                                  "NotOpenForWrite",
                                  "KeyNotFound",
                                  "DuplicateKey",
                                  "InvalidKey",
                                  "NullExtents",
                                  "InvalidExtents",
                                  "DegenerateGeometry",
                                  "WrongObjectType",
                                  "NotInDatabase",
                                  "NoDatabase",
                                  "InvalidIndex",
                                  "FileNotFound",
                                  "FileAccessErr",
                                  "BadDxfFile",
                                  "OutOfMemory",
                                  "UserBreak",
                                  "NotApplicable"};
static_assert(std::size(kTexts) == Acad::eNotApplicable + 1);

} // namespace

const char* Acad::errorText(ErrorStatus status) {
    const auto index = static_cast<std::size_t>(status);
    return index < std::size(kTexts) ? kTexts[index] : "unknown status";
}
