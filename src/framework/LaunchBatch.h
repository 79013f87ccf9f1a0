// Programs that are started together: all at once, one after the other with pauses, on a thread of their own, or each
// when the one before has ended.
//
//     LaunchBatch batch;
//     AddLaunchItem(batch, kLaunchEachWaited, u"C:\\a.exe", u"-x", u"", kShowNormal, kWaitForever);
//     RunLaunchBatch(context, pause, workers, batch);
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/Processes.h"
#include "framework/WorkerThreads.h"

namespace kinsort {

// The modes that there are; a batch of any other launches nothing.
enum LaunchMode : int32_t {
    kLaunchAtOnce = 0,      // through the desktop, without waiting
    kLaunchHandedOver = 1,  // the same, each when the desktop has taken the one before it
    kLaunchPause200 = 2,    // the same, with 200 ms after each
    kLaunchPause500 = 3,    // the same, with 500 ms after each
    kLaunchOnWorker = 4,    // as kLaunchAtOnce, on a thread of its own and never elevated
    kLaunchEachWaited = 5,  // as processes, each waited for; the first failure or time-out ends the batch
};

struct LaunchItem {
    std::u16string program;
    std::u16string arguments;    // one text, see text/CommandLine.h
    std::u16string startFolder;  // may be empty
    uint16_t showState = kShowNormal;
    int32_t timeoutMs = kWaitForever;
};

struct LaunchBatch {
    uint32_t elevated = 0;  // not 0: with an administrator's rights
    int32_t mode = kLaunchAtOnce;
    std::vector<LaunchItem> items;
};

// The threads of kLaunchOnWorker. Goes before everything that a launch works with, unless a thread is left behind: see
// framework/WorkerThreads.h.
class LaunchWorkers {
  public:
    explicit LaunchWorkers(std::chrono::milliseconds patience = std::chrono::seconds(2)) : patience_(patience) {}
    LaunchWorkers(const LaunchWorkers&) = delete;
    LaunchWorkers& operator=(const LaunchWorkers&) = delete;
    // Items that have not been started when patience is over never are.
    ~LaunchWorkers() { threads_.WaitForAll(patience_); }

    // From the thread that owns this.
    void Launch(const ProcessContext& context, std::vector<LaunchItem> items);

  private:
    const std::chrono::milliseconds patience_;
    WorkerThreads threads_{nullptr, SIZE_MAX};
};

// Appends an item. The batch has the mode of the last one.
void AddLaunchItem(LaunchBatch& batch, int32_t mode, std::u16string_view program, std::u16string_view arguments,
                   std::u16string_view startFolder, uint16_t showState, int32_t timeoutMs);

// Blocks for a number of milliseconds, or less when whoever asked for the batch no longer wants it.
using LaunchPause = std::function<void(int32_t milliseconds)>;

// Runs the batch as its mode says and empties it. What cannot be started is passed over without a word; `context` keeps
// the last failure. Once context.isCancelled, nothing further is started.
void RunLaunchBatch(ProcessContext& context, const LaunchPause& pause, LaunchWorkers& workers, LaunchBatch& batch);

}  // namespace kinsort
