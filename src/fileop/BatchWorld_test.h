// A small world for the tests of the batch engine: an in-memory disk, an engine on it, and ways to say in one line what
// is there.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "fileop/FileOperation.h"
#include "fileop/UndoHistory.h"
#include "platform/fake/FaultSys.h"
#include "platform/fake/ManualClock.h"
#include "platform/fake/MemorySys.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {

struct Job {
    bool isMove;
    std::string source;  // stored paths
    std::string folder;
};

class BatchWorld {
  public:
    static constexpr const char* kJournals = "/state/undo";

    // Makes room for the journals on a disk whose top belongs to the system.
    static void Prepare(MemorySys& disk) { disk.MakeFolders("/state"); }
    // With files to sort, one of which has a namesake in "/out".
    static void PrepareFiles(MemorySys& disk) {
        Prepare(disk);
        disk.WriteFile("/in/a.txt", "A");
        disk.WriteFile("/in/b.txt", "B");
        disk.WriteFile("/in/album/c.txt", "C");
        disk.WriteFile("/out/b.txt", "old");
    }

    FileOperationServices ServicesOn(Sys& sys) { return {sys, *codec_, clock_, kJournals}; }

    BatchResult Run(Sys& sys, const std::vector<Job>& jobs, const OperationPolicy& policy,
                    AskUserAction* asker = nullptr, const CancelToken* cancel = nullptr) {
        FileOperation operation(ServicesOn(sys));
        operation.SetPolicy(policy);
        for (const Job& job : jobs) {
            const auto source = codec_->PathToInner(job.source);
            const auto folder = codec_->PathToInner(job.folder);
            job.isMove ? operation.MoveItems(source, folder) : operation.CopyItems(source, folder);
        }
        return operation.PerformOperations(asker, nullptr, cancel);
    }

    BatchResult Undo(Sys& sys, BatchId id = 0) {
        UndoHistory history(ServicesOn(sys));
        return history.Undo(id != 0 ? id : history.NewestUndoable(), nullptr, nullptr);
    }
    BatchResult Redo(Sys& sys, BatchId id = 0) {
        UndoHistory history(ServicesOn(sys));
        return history.Redo(id != 0 ? id : history.NewestRedoable(), nullptr, nullptr);
    }
    std::vector<BatchSummary> List(Sys& sys) {
        auto list = UndoHistory(ServicesOn(sys)).List();
        return list.ok() ? *list : std::vector<BatchSummary>();
    }

    // "path=content" of every file, "path/" of every folder, "path->text" of every link, without the journals and
    // what is kept for undo.
    static std::string Tree(const MemorySys& disk, std::string_view below = "/") {
        std::string out;
        for (const TreeEntry& entry : disk.ListTree(below)) {
            if (below == "/" && entry.path.starts_with("state")) continue;
            if (entry.path.find(".kinsort-") != std::string::npos) continue;
            out += out.empty() ? "" : " ";
            out += entry.path;
            if (entry.kind == FileKind::kFolder) out += "/";
            const bool isLong = entry.content.size() > 24;
            const std::string size = std::to_string(entry.content.size());
            if (entry.kind == FileKind::kFile)
                out += "=" + (isLong ? entry.content.substr(0, 3) + "~" + size : entry.content);
            if (entry.kind == FileKind::kLink) out += "->" + entry.content;
        }
        return out;
    }
    // Everything that undo has to give back, one line for each name; journals left out.
    static std::string Snapshot(const MemorySys& disk, bool withInodes) {
        std::string out;
        for (const TreeEntry& entry : disk.ListTree("/")) {
            if (entry.path.starts_with("state")) continue;
            out += entry.path + " " + entry.content + " mode " + std::to_string(entry.mode) + " at " +
                   std::to_string(entry.modifiedNs % 1'000'000'000'000) + " links " + std::to_string(entry.links);
            for (const auto& [name, value] : entry.userAttributes)
                out += " " + name + "=" + value;
            if (withInodes) out += " inode " + std::to_string(entry.inode);
            out += "\n";
        }
        return out;
    }

    const PathCodec& codec() const { return *codec_; }

  private:
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("/drives");
    ManualClock clock_;
};

// Answers from a list, the last answer for ever, and counts the questions.
class ScriptedAsker final : public AskUserAction {
  public:
    explicit ScriptedAsker(std::vector<ConflictReply> replies) : replies_(std::move(replies)) {}

    ConflictReply AskConflict(const Conflict& conflict) override {
        asked.push_back(conflict);
        const size_t index = std::min(asked.size(), replies_.size()) - 1;
        return replies_.empty() ? ConflictReply{} : replies_[index];
    }

    std::vector<Conflict> asked;

  private:
    std::vector<ConflictReply> replies_;
};

}  // namespace kinsort
