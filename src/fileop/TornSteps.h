// Finds out, after a crash, how far each step of a batch really came, and brings those that stand half-way to an end:
// a step is then either done or as if never begun. Doing it twice does no harm.
#pragma once

#include <cstdint>
#include <vector>

#include "fileop/Batch.h"
#include "fileop/FolderTable.h"
#include "fileop/StepActor.h"
#include "platform/Sys.h"

namespace kinsort {

class TornSteps {
  public:
    TornSteps(Sys& sys, Batch& batch, FolderTable& folders);

    // Settles every step that the journal does not call failed: its state becomes kDone or kPending. Returns the
    // indices of the steps found done. Fails only when what is on the volume cannot be made durable.
    Result<std::vector<uint32_t>> Settle();

  private:
    enum class Finding : uint8_t { kDone, kPending };
    using Folder = std::shared_ptr<const FileHandle>;

    struct Look {
        Folder folder;
        Result<FileInfo> info = Status::Failure(StatusCode::kNotFound);
    };

    Look LookAt(const Place& place);
    Finding Probe(uint32_t index);
    Finding ProbeMove(uint32_t index);
    Finding ProbeContent(uint32_t index);
    Finding ProbeFolder(uint32_t index);
    Finding FinishTransfer(uint32_t index, const Look& source);
    // Whether what stands at `place` is what the step made, and whole.
    bool IsMadeHere(uint32_t index, const Look& there, const Look& source);
    bool IsSameAsSource(const Step& step, const Look& there, const Place& place, const Look& source);
    void PinAgain(const Place& place, const Look& there);
    void RemoveTemporary(uint32_t index);
    void RepairSwap(uint32_t index);
    void DropContent(uint32_t index);

    Sys& sys_;
    Batch& batch_;
    FolderTable& folders_;
    CancelToken neverCancelled_;
    StepActor actor_;
    Status failure_;
};

}  // namespace kinsort
