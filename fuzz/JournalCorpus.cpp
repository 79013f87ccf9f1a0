// Writes the seeds of Journal_fuzz into a folder: the journals of a few small batches, as a file and record by record.
//
//   JournalCorpus FOLDER
#include <cstdio>
#include <fstream>
#include <string>

#include "fileop/BatchWorld_test.h"
#include "fileop/JournalFormat.h"

namespace {

using namespace kinsort;

void WriteSeed(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// The fuzz target's own form: type and length in a byte each, then the payload.
std::string RecordByRecord(const std::string& journal) {
    std::string out = "\x01";
    for (const Record& record : ScanJournal(journal).records) {
        if (record.payload.size() > 255) continue;
        out += static_cast<char>(record.type);
        out += static_cast<char>(record.payload.size());
        out += record.payload;
    }
    return out;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: JournalCorpus FOLDER\n");
        return 2;
    }
    MemorySys disk;
    BatchWorld world;
    BatchWorld::PrepareFiles(disk);
    disk.AddVolume("/usb", {});
    disk.MakeFolders("/usb/U");
    const OperationPolicy policy{
        .conflicts = ConflictAnswer::kReplace, .durability = Durability::kContent, .threads = 1};
    (void)world.Run(disk, {{true, "/in/a.txt", "/usb/U"}, {true, "/in/b.txt", "/out"}, {false, "/in/album", "/out"}},
                    policy);
    (void)world.Undo(disk);
    (void)world.Redo(disk);
    const std::string folder = std::string(argv[1]) + "/";
    for (const TreeEntry& entry : disk.ListTree(BatchWorld::kJournals)) {
        if (!entry.path.ends_with(".batch")) continue;
        WriteSeed(folder + entry.path, std::string(1, '\0') + entry.content);
        WriteSeed(folder + entry.path + ".records", RecordByRecord(entry.content));
    }
    return 0;
}
