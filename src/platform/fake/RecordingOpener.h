// A desktop that opens nothing and remembers what it was asked for.
#pragma once

#include <deque>
#include <vector>

#include "platform/DesktopOpener.h"

namespace kinsort {

class RecordingOpener final : public DesktopOpener {
  public:
    std::vector<OpenRequest> opened;
    std::deque<Status> results;  // taken from the front; success when there are none left

    Status Open(const OpenRequest& request) override {
        opened.push_back(request);
        if (results.empty()) return {};
        Status result = results.front();
        results.pop_front();
        return result;
    }
};

}  // namespace kinsort
