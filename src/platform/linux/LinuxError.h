// errno as the house's Status: the one place on Linux where a system number becomes a code and a text.
#pragma once

#include "platform/Status.h"

namespace kinsort {

// What `error` (a value of errno) means in general. A number that no row knows gives kOther.
StatusCode CodeOfErrno(int error);

// The failure with its number and the C library's text, in the language set by the program's first setlocale call.
// Cheap enough for a call that is expected to fail: nothing is allocated after the first time.
Status StatusFromErrno(int error);

// The same number and text, but with the meaning that it has for one particular call.
Status StatusFromErrno(int error, StatusCode code);

}  // namespace kinsort
