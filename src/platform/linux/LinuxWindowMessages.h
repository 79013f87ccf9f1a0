// Window messages over Unix sockets in the runtime folder. A window is a pair of files there: its socket, and a file
// with its class and process that is locked while its program lives, so that what dead programs leave is recognised
// and removed. Frames are checked before anything is allocated or believed; a peer of another user is closed unread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <sys/types.h>

#include "platform/WindowMessages.h"

namespace kinsort {

struct MessageLimits {
    int32_t frameMs = 5'000;    // for a message to come or go completely
    int32_t answerMs = 30'000;  // for the receiver to answer: its handler may ask its user something
    size_t connections = 64;    // at a time; more wait in the system's queue
    size_t posted = 10'000;     // messages that wait for Dispatch(); senders of further ones wait
};

std::unique_ptr<WindowMessages> MakeLinuxWindowMessages();  // in the runtime folder, for the user the program runs as
// In `folder`, which is created when it is missing; what belongs to others than `owner` is refused.
std::unique_ptr<WindowMessages> MakeLinuxWindowMessages(std::string folder, uid_t owner, const MessageLimits& limits);

}  // namespace kinsort
