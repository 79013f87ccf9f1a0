// Windows of this thread, of another thread and of another process, and peers that do not keep to the rules.
#include "platform/linux/LinuxWindowMessages.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/MessageFrame.h"
#include "platform/linux/OtherProgram_test.h"
#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::string_literals;

class LinuxWindowMessagesTest : public testing::Test {
  protected:
    std::unique_ptr<WindowMessages> Make(const MessageLimits& limits = {}) {
        return MakeLinuxWindowMessages(folder_, geteuid(), limits);
    }
    auto Maker(const MessageLimits& limits = {}) {
        return [this, limits] { return Make(limits); };
    }
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_))
            names.push_back(entry.path().filename());
        return names;
    }
    // A connection to the only window; its peer keeps to no rule.
    Descriptor RawConnection() const {
        Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
            if (entry.is_socket()) std::strcpy(address.sun_path, entry.path().c_str());
        }
        EXPECT_EQ(connect(connection.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        return connection;
    }

    const TemporaryFolder temporary_;
    std::string folder_ = temporary_.path() + "/vel";
    Recorder recorder_;
    Recorder other_;
};

TEST_F(LinuxWindowMessagesTest, WindowsAreFoundAsLongAsTheyLive) {
    folder_ = temporary_.path() + "/" + std::string(150, 'v');  // longer than the address of a socket may be
    const auto messages = Make();
    const auto another = Make();
    EXPECT_EQ(messages->FindTopLevel(u"{Ab-1}"), kNoWindow);
    auto first = messages->RegisterTopLevel(u"{Ab-1}", recorder_);
    auto second = another->RegisterTopLevel(u"{aB-1}", recorder_);
    const auto third = messages->RegisterTopLevel(std::u16string(kMaxClassNameUnits, u'\u3042'), recorder_);
    ASSERT_TRUE(first.ok() && second.ok() && third.ok());
    const WindowHandle gone = (*second)->Handle();
    EXPECT_EQ(messages->FindTopLevel(u"{AB-1}"), gone);  // the newest
    EXPECT_EQ(another->FindTopLevel(std::u16string(kMaxClassNameUnits, u'\u3042')), (*third)->Handle());
    EXPECT_EQ(messages->FindTopLevel(u"{AB-1"), kNoWindow);
    EXPECT_EQ(another->FindTopLevelOfProcess(static_cast<uint32_t>(getpid())), (*third)->Handle());
    EXPECT_EQ(another->FindTopLevelOfProcess(1), kNoWindow);
    EXPECT_TRUE(messages->IsWindowAlive(gone));
    second->reset();
    EXPECT_EQ(another->FindTopLevel(u"{ab-1}"), (*first)->Handle());
    for (const WindowHandle window : {gone, kNoWindow, ~WindowHandle{0}}) {
        EXPECT_FALSE(messages->IsWindowAlive(window));
        EXPECT_EQ(messages->SendNumbers(window, 1, 2, 3).code(), StatusCode::kNotFound);
        EXPECT_EQ(messages->PostDrop(window, {}).code(), StatusCode::kNotFound);
    }
    for (const std::u16string& name : {std::u16string(), std::u16string(kMaxClassNameUnits + 1, u'x'), u"a\0b"s}) {
        EXPECT_EQ(messages->RegisterTopLevel(name, recorder_).code(), StatusCode::kInvalid);
    }
    EXPECT_THAT(Files(), SizeIs(4));
}

TEST_F(LinuxWindowMessagesTest, WhatIsSentArrivesByteForByteAndIsAnswered) {
    other_.answer = [this] { return -5 - static_cast<int64_t>(other_.got.size()); };
    OtherProgram program(Maker(), other_);
    const auto messages = Make();
    std::vector<Got> expected;
    for (const size_t size : {0, 1, 40, 65'536, 65'537, 3'000'000}) {
        expected.push_back({'d', 0xFFFF'FFFF'0000'0000 + size, 0, 77, Pattern(size)});
        const Result<int64_t> answer = messages->SendData(program.handle(), 77, expected.back().first, Pattern(size));
        EXPECT_EQ(*answer, -5 - static_cast<int64_t>(expected.size()));
    }
    expected.push_back({'n', ~uint64_t{0}, INT64_MIN, 0x8008, {}});
    EXPECT_EQ(*messages->SendNumbers(program.handle(), 0x8008, ~uint64_t{0}, INT64_MIN), -12);
    EXPECT_EQ(messages->SendData(program.handle(), 0, 0, Bytes(kMaxMessageBytes + 1)).code(), StatusCode::kInvalid);
    program.Stop();
    EXPECT_EQ(other_.got, expected);
    EXPECT_EQ(messages->SendNumbers(program.handle(), 1, 1, 1).code(), StatusCode::kNotFound);
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(LinuxWindowMessagesTest, WhatIsPostedArrivesInOrderAndOnlyWhenDispatched) {
    const auto receiver = Make({.connections = 4, .posted = 8});
    const auto window = receiver->RegisterTopLevel(u"A", recorder_);
    const WindowHandle handle = (*window)->Handle();
    std::thread sender([&] {
        const auto messages = Make();
        for (uint64_t i = 0; i < 500; ++i) {
            const bool isDrop = i % 50 == 0;
            const Status status = isDrop ? messages->PostDrop(handle, Pattern(400'000 + i))
                                         : messages->PostNumbers(handle, 0x111, i, -static_cast<int64_t>(i));
            EXPECT_TRUE(status.ok()) << i;
        }
        EXPECT_TRUE(messages->SendNumbers(handle, 2, 0, 0).ok());
    });
    while (recorder_.got.size() < 501 && WaitReadable(receiver->EventDescriptor()))
        receiver->Dispatch();
    sender.join();
    // What is sent may overtake the last of what is posted.
    std::erase_if(recorder_.got, [](const Got& got) { return got.other == 2; });
    ASSERT_THAT(recorder_.got, SizeIs(500));
    for (uint64_t i = 0; i < 500; ++i) {
        if (i % 50 == 0)
            EXPECT_EQ(recorder_.got[i].data, Pattern(400'000 + i));
        else
            EXPECT_EQ(recorder_.got[i], (Got{'n', i, -static_cast<int64_t>(i), 0x111, {}}));
    }
}

TEST_F(LinuxWindowMessagesTest, AWindowOfTheSameThreadIsCalledDirectly) {
    const auto messages = Make({.posted = 2});
    auto window = messages->RegisterTopLevel(u"A", recorder_);
    const WindowHandle handle = (*window)->Handle();
    recorder_.answer = [] { return 9; };
    EXPECT_EQ(*messages->SendData(handle, 5, 100, Pattern(3)), 9);
    EXPECT_THAT(recorder_.got, ElementsAre(Got{'d', 100, 0, 5, Pattern(3)}));

    // Posting waits for the loop, also what a handler posts while it handles something posted.
    int rounds = 0;
    recorder_.answer = [&]() -> int64_t {
        if (++rounds < 3) (void)messages->PostNumbers(handle, 2, 0, 0);
        if (rounds == 3) window->reset();  // even this, with more to come
        return 0;
    };
    EXPECT_TRUE(messages->PostNumbers(handle, 1, 0, 0).ok());
    EXPECT_TRUE(messages->PostNumbers(handle, 1, 0, 0).ok());
    EXPECT_EQ(messages->PostNumbers(handle, 1, 0, 0).code(), StatusCode::kTimedOut);  // no room
    EXPECT_THAT(recorder_.got, SizeIs(1));
    EXPECT_TRUE(WaitReadable(messages->EventDescriptor()));
    messages->Dispatch();
    EXPECT_EQ(rounds, 2);
    EXPECT_TRUE(WaitReadable(messages->EventDescriptor()));
    messages->Dispatch();
    EXPECT_EQ(rounds, 3);
    EXPECT_FALSE(messages->IsWindowAlive(handle));
    pollfd quiet = {messages->EventDescriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&quiet, 1, 0), 0);  // an event loop would spin otherwise
}

TEST_F(LinuxWindowMessagesTest, TwoWindowsCanSendToEachOtherAtOnce) {
    // Each handler asks the other side back before it answers, three deep.
    const auto messages = Make();
    const auto window = messages->RegisterTopLevel(u"A", recorder_);
    const WindowHandle ours = (*window)->Handle();
    WindowMessages* theirs = nullptr;
    OtherProgram program(Maker(), other_, [&](WindowMessages& made) { theirs = &made; });
    const WindowHandle handle = program.handle();
    recorder_.answer = [&] { return *messages->SendNumbers(handle, 1, 0, 0) + 1; };
    other_.answer = [&]() -> int64_t { return other_.got.size() < 3 ? *theirs->SendNumbers(ours, 1, 0, 0) + 10 : 100; };
    EXPECT_EQ(*messages->SendNumbers(handle, 1, 0, 0), 122);
    EXPECT_THAT(recorder_.got, SizeIs(2));
}

TEST_F(LinuxWindowMessagesTest, AReceiverThatDoesNotAnswerIsGivenUp) {
    const auto messages = Make({.frameMs = 30, .answerMs = 30});
    const auto stuck = Make();
    auto window = stuck->RegisterTopLevel(u"Stuck", recorder_);
    const WindowHandle handle = (*window)->Handle();
    EXPECT_EQ(messages->SendNumbers(handle, 1, 0, 0).code(), StatusCode::kTimedOut);
    EXPECT_EQ(messages->PostDrop(handle, Pattern(8'000'000)).code(), StatusCode::kTimedOut);
    for (int i = 0; i < 100; ++i)  // until its queue is full
        (void)messages->PostNumbers(handle, 1, 0, 0);
    EXPECT_EQ(messages->PostNumbers(handle, 1, 0, 0).code(), StatusCode::kTimedOut);
    window->reset();
    EXPECT_EQ(messages->SendNumbers(handle, 1, 0, 0).code(), StatusCode::kNotFound);

    // One that goes while it handles the message.
    Recorder leaving;
    std::unique_ptr<TopLevelWindow> last;
    leaving.answer = [&] { return last.reset(), 1; };
    WindowHandle lastHandle = kNoWindow;
    std::promise<void> ready;
    OtherProgram program(Maker(), other_, [&](WindowMessages& made) {
        last = std::move(*made.RegisterTopLevel(u"Leaving", leaving));
        lastHandle = last->Handle();
        ready.set_value();
    });
    ready.get_future().wait();
    EXPECT_EQ(*Make()->SendNumbers(lastHandle, 1, 0, 0), 1);
    EXPECT_EQ(Make()->SendNumbers(lastHandle, 1, 0, 0).code(), StatusCode::kNotFound);
}

// Bytes that are no message, or the beginning of one that never ends.
struct BadPeer {
    const char* name;
    Bytes bytes;
    bool staysOpen = false;
};

std::vector<BadPeer> BadPeers() {
    const auto header = [](FrameKind kind, uint32_t dataBytes, size_t length = kFrameHeaderBytes) {
        const auto bytes = EncodeHeader({kind, 1, 2, 3, 4, dataBytes});
        return Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length));
    };
    Bytes halfData = header(FrameKind::kSentData, 1000);
    halfData.resize(halfData.size() + 999);
    return {
        {"nothing", {}},
        {"garbage", Pattern(5000)},
        {"text", Bytes(kFrameHeaderBytes, std::byte{'G'})},
        {"half a header", header(FrameKind::kSentNumbers, 0, 39)},
        {"half the data", halfData},
        {"half the data, silent", halfData, true},
        {"silent", {}, true},
        {"too much data", header(FrameKind::kSentData, kMaxMessageBytes + 1), true},
        {"far too much data", header(FrameKind::kPostedDrop, 0xFFFF'FFFF), true},
        {"numbers with data", header(FrameKind::kPostedNumbers, 1), true},
        {"kind 0", header(static_cast<FrameKind>(0), 0), true},
        {"kind 5", header(static_cast<FrameKind>(5), 0), true},
        {"gone before the answer", header(FrameKind::kSentNumbers, 0)},
    };
}

TEST_F(LinuxWindowMessagesTest, HostilePeersAreClosedWithoutHarm) {
    const auto receiver = Make({.frameMs = 50, .connections = 3});
    const auto window = receiver->RegisterTopLevel(u"A", recorder_);
    std::vector<Descriptor> open;
    for (const BadPeer& peer : BadPeers()) {
        Descriptor connection = RawConnection();
        EXPECT_EQ(send(connection.get(), peer.bytes.data(), peer.bytes.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(peer.bytes.size()))
            << peer.name;
        if (peer.staysOpen) open.push_back(std::move(connection));
    }
    {  // Open files that are sent along are closed by the system.
        const Descriptor connection = RawConnection();
        const int file = connection.get();
        auto bytes = EncodeHeader({FrameKind::kPostedNumbers, 6, 0, 7, 8, 0});
        iovec part = {bytes.data(), bytes.size()};
        alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof file)> control = {};
        msghdr message = {};
        message.msg_iov = &part;
        message.msg_iovlen = 1;
        message.msg_control = control.data();
        message.msg_controllen = control.size();
        cmsghdr* const rights = CMSG_FIRSTHDR(&message);
        *rights = {CMSG_LEN(sizeof file), SOL_SOCKET, SCM_RIGHTS};
        std::memcpy(CMSG_DATA(rights), &file, sizeof file);
        EXPECT_EQ(sendmsg(connection.get(), &message, 0), static_cast<ssize_t>(bytes.size()));
    }
    const auto countFiles = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = countFiles();
    const std::vector<Got> expected = {{'n', 3, 4, 1, {}}, {'n', 7, 8, 6, {}}};
    while (recorder_.got.size() < expected.size() && WaitReadable(receiver->EventDescriptor()))
        receiver->Dispatch();
    EXPECT_EQ(recorder_.got, expected);
    for (const Descriptor& connection : open) {
        pollfd wait = {connection.get(), POLLIN, 0};
        while (poll(&wait, 1, 0) == 0 && WaitReadable(receiver->EventDescriptor()))
            receiver->Dispatch();
    }
    EXPECT_EQ(countFiles(), before);
}

TEST_F(LinuxWindowMessagesTest, LargeMessagesAreTakenInOneAfterTheOther) {
    const auto receiver = Make({.frameMs = 60'000});
    const auto window = receiver->RegisterTopLevel(u"A", recorder_);
    struct Sender {
        Descriptor connection;
        Bytes bytes;
        size_t sent = 0;
        void Push(size_t end) {
            for (ssize_t put = 1; put > 0 && sent < end; sent += static_cast<size_t>(std::max<ssize_t>(put, 0)))
                put = send(connection.get(), bytes.data() + sent, end - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        }
    };
    std::vector<Sender> senders;
    const Bytes data = Pattern(8'000'000);
    for (int i = 0; i < 3; ++i) {
        const auto header = EncodeHeader({FrameKind::kSentData, 0, 0, 0, 0, static_cast<uint32_t>(data.size())});
        senders.push_back({RawConnection(), Bytes(header.begin(), header.end())});
        senders.back().bytes.insert(senders.back().bytes.end(), data.begin(), data.end());
    }
    const size_t whole = senders[0].bytes.size();
    while (senders[0].sent < whole - 1) {
        for (Sender& sender : senders)
            sender.Push(&sender == &senders[0] ? whole - 1 : whole);
        ASSERT_TRUE(WaitReadable(receiver->EventDescriptor()));
        receiver->Dispatch();
    }
    pollfd quiet = {receiver->EventDescriptor(), POLLIN, 0};
    for (int i = 0; i < 1000 && poll(&quiet, 1, 0) == 1; ++i)
        receiver->Dispatch();
    EXPECT_EQ(poll(&quiet, 1, 0), 0) << "those that wait for their turn wake nobody";
    EXPECT_LT(std::max(senders[1].sent, senders[2].sent), 2'000'000u);
    while (recorder_.got.size() < 3) {
        for (Sender& sender : senders)
            sender.Push(whole);
        ASSERT_TRUE(WaitReadable(receiver->EventDescriptor()));
        receiver->Dispatch();
    }
    for (const Got& got : recorder_.got)
        EXPECT_EQ(got.data, data);
}

TEST_F(LinuxWindowMessagesTest, AnotherUserIsClosedUnread) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can play another user";
    const auto receiver = Make();
    const auto window = receiver->RegisterTopLevel(u"A", recorder_);
    for (const std::filesystem::path path = temporary_.path(); const std::string& name : Files()) {
        chmod(path.c_str(), 0755);
        chmod(folder_.c_str(), 0755);
        chmod((folder_ + "/" + name).c_str(), 0666);
    }
    const auto bytes = EncodeHeader({FrameKind::kPostedNumbers, 1, 2, 3, 4, 0});
    const pid_t stranger = fork();
    if (stranger == 0) {
        if (setuid(65'534) != 0) _exit(2);
        const Descriptor connection = RawConnection();
        _exit(send(connection.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0 ? 0 : 1);
    }
    int status = -1;
    waitpid(stranger, &status, 0);
    ASSERT_EQ(status, 0);  // the message was sent
    EXPECT_TRUE(WaitReadable(receiver->EventDescriptor()));
    receiver->Dispatch();
    EXPECT_THAT(recorder_.got, IsEmpty());
    EXPECT_EQ(receiver->SendNumbers((*window)->Handle(), 1, 0, 0).code(), StatusCode::kOk);
    // Neither does it trust a window that somebody else made.
    const auto suspicious = MakeLinuxWindowMessages(folder_, 65'534, {});
    EXPECT_EQ(suspicious->FindTopLevel(u"A"), kNoWindow);
    EXPECT_EQ(suspicious->RegisterTopLevel(u"B", recorder_).code(), StatusCode::kAccessDenied);
}

TEST_F(LinuxWindowMessagesTest, WhatDeadProgramsLeaveIsRemovedAndNothingElse) {
    const auto messages = Make();
    std::array<int, 2> pipe = {};
    ASSERT_EQ(pipe2(pipe.data(), O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        Recorder recorder;
        const auto own = MakeLinuxWindowMessages(folder_, geteuid(), {});
        const auto window = own->RegisterTopLevel(u"Doomed", recorder);
        const WindowHandle handle = (*window)->Handle();
        if (write(pipe[1], &handle, sizeof handle) < 0) _exit(1);
        pause();
        _exit(1);
    }
    WindowHandle handle = kNoWindow;
    ASSERT_EQ(read(pipe[0], &handle, sizeof handle), static_cast<ssize_t>(sizeof handle));
    EXPECT_EQ(messages->FindTopLevel(u"doomed"), handle);
    EXPECT_EQ(messages->FindTopLevelOfProcess(static_cast<uint32_t>(child)), handle);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(pipe[0]);
    close(pipe[1]);

    const std::string squatted = folder_ + "/window-00000000000000aa";
    std::ofstream(squatted) << "somebody's file";
    std::ofstream(squatted + ".class") << "no record";
    std::filesystem::create_directory(folder_ + "/window-00000000000000bb.class");
    std::filesystem::create_symlink("/etc/passwd", folder_ + "/window-00000000000000cc.class");
    std::ofstream(folder_ + "/window-zz.class");
    EXPECT_THAT(Files(), SizeIs(7));
    EXPECT_FALSE(messages->IsWindowAlive(handle));
    EXPECT_EQ(messages->FindTopLevel(u"doomed"), kNoWindow);
    EXPECT_EQ(messages->PostNumbers(0xAA, 1, 0, 0).code(), StatusCode::kNotFound);
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("window-00000000000000aa", "window-00000000000000bb.class",
                                                       "window-00000000000000cc.class", "window-zz.class"));
}

}  // namespace
}  // namespace kinsort
