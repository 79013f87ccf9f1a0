// Any bytes as a hand-off block: nothing but TABs changes, and what was read can be written and read again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "hostlink/HandOffWriter.h"
#include "hostlink/LaunchDescriptor.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/FakeSharedMemory.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckBytes(const std::vector<std::byte>& before, const std::vector<std::byte>& after, size_t parsed) {
    Require(parsed % 2 == 0 && parsed <= before.size());
    for (size_t i = 0; i + 1 < before.size(); i += 2) {
        const bool wasTab = before[i] == std::byte{9} && before[i + 1] == std::byte{0};
        const std::byte expected = wasTab && i < parsed ? std::byte{0} : before[i];
        Require(after[i] == expected && after[i + 1] == before[i + 1]);
    }
    if (before.size() % 2 != 0) Require(after.back() == before.back());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace kinsort;
    const auto* bytes = reinterpret_cast<const std::byte*>(data);
    const std::vector<std::byte> before(bytes, bytes + size);
    std::vector<std::byte> after = before;
    HostHandOff handOff;
    const size_t parsed = ParseHandOffBlock(after, handOff);
    CheckBytes(before, after, parsed);

    handOff.SharedHandOff = 1;
    FakeSharedMemory memory;
    const Result<WrittenHandOff> written = WriteHandOff(memory, handOff);
    Require(written.ok());
    FakeEnvironment environment;
    environment.variables[std::u16string(kLaunchDescriptorVariable)] = written->descriptor;
    HostHandOff again;
    ReadHostHandOff(
        environment, memory, [](const std::u16string&) { std::abort(); }, again);
    Require(again == handOff);
    return 0;
}
