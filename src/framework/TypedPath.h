// From what a person types, pastes or hands over from a file manager to a path of the inner language.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/PathCodec.h"

namespace kinsort {

enum class TypedPathProblem : uint8_t {
    kNone,
    kEmpty,
    kNoHome,         // "~" and nobody knows the home folder
    kForeignHost,    // a file URI that names another machine
    kNotAbsolute,    // "file:notes.txt"
    kBadPercent,     // "%" without two hexadecimal digits
    kForbiddenByte,  // "%2F" or "%00", which no name can hold, or a NUL
    kHasFragment,    // "?" or "#" in a file URI, which would have to be written %3F and %23
};

struct TypedPath {
    std::u16string inner;  // empty when there is a problem
    TypedPathProblem problem = TypedPathProblem::kNone;

    bool ok() const { return problem == TypedPathProblem::kNone; }
};

// Understands, in this order:
//   file:///home/me/a%20b    and file://localhost/..., file:/...
//   ~ and ~/notes            `homeFolder` is a stored path; empty when it is not known
//   /home/me/notes           a native path
//   Z:\home\me, \\nas\share  the inner language itself, unchanged
//   notes/today.txt          a native relative path: stays relative, still to be resolved
// `typed` is bytes as the system hands them over; those that are no text are kept as in a stored name.
TypedPath InnerPathFromTyped(std::string_view typed, std::string_view homeFolder, const PathCodec& codec);

// What is wrong and what to do, one English sentence without the path; empty for kNone.
std::string_view DescribeProblem(TypedPathProblem problem);

}  // namespace kinsort
