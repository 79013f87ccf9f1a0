#include "platform/linux/SqliteRegistry.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/fake/MemoryRegistry.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

class SqliteRegistryTest : public testing::Test {
  protected:
    std::unique_ptr<Registry> Open(int busyMs = 5000) {
        return MakeSqliteRegistry(
            file_, *codec_, [this](const RegistryDamage& d) { damages_.push_back(d); }, busyMs);
    }
    std::string ReadFile(const std::string& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    void WriteFile(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    // Runs `body` in a process of its own that no permission is waived for; everything in the folder is that user's.
    void AsOrdinaryUser(const std::function<void()>& body) {
        constexpr uid_t kNobody = 65534;
        const bool isRoot = geteuid() == 0;
        if (isRoot) {
            ASSERT_EQ(chown(temporary_.path().c_str(), kNobody, kNobody), 0);
            for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary_.path()))
                ASSERT_EQ(chown(entry.path().c_str(), kNobody, kNobody), 0);
        }
        const pid_t child = fork();
        if (child == 0) {
            if (isRoot && setuid(kNobody) != 0) _exit(2);
            body();
            fflush(nullptr);
            _exit(HasFailure() ? 1 : 0);
        }
        int result = -1;
        waitpid(child, &result, 0);
        EXPECT_EQ(result, 0);
    }
    static unsigned ModeOf(const std::string& path) {
        struct stat info;
        return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
    }

    const TemporaryFolder temporary_;
    const std::string folder_ = temporary_.path() + "/config/vel";
    const std::string file_ = folder_ + "/registry.db";
    const std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec(temporary_.path() + "/drives");
    std::vector<RegistryDamage> damages_;
};

// What every registry promises, on the stored one and on the one that other tests lean on.
void KeepsThePromises(Registry& registry) {
    EXPECT_EQ(registry.QueryValue(u"A", u"x").code(), StatusCode::kNotFound);
    EXPECT_FALSE(registry.HasKey(u"A").value());
    EXPECT_TRUE(registry.HasKey(u"").value());
    EXPECT_EQ(registry.RemoveKey(u"A").code(), StatusCode::kNotFound);
    EXPECT_TRUE(registry.RemoveValue(u"A", u"x").ok());
    EXPECT_THAT(registry.List(u"A").value(), IsEmpty());

    // Keys and names are case-blind in ASCII only, and keep the spelling they were made in.
    ASSERT_TRUE(registry.SetValue(u"Software\\Vel\\One", u"Näme", RegistryValue::OfString(u"日本\xD800語")).ok());
    ASSERT_TRUE(registry.SetValue(u"\\SOFTWARE\\VEL\\\\one\\", u"NäME", RegistryValue::OfDword(0xFEDCBA98)).ok());
    ASSERT_TRUE(registry.SetValue(u"software\\vel\\One", u"NÄME", RegistryValue::OfString(u"")).ok());
    ASSERT_TRUE(registry.CreateKey(u"software\\VEL\\Two").ok());
    ASSERT_TRUE(registry.CreateKey(u"Software\\Vel2").ok());
    const RegistryValue odd{0xFFFFFFFF, {std::byte{0}, std::byte{7}}};
    ASSERT_TRUE(registry.SetValue(u"Software\\Vel\\two", u"", odd).ok());
    EXPECT_EQ(registry.QueryValue(u"software\\vel\\one", u"nämE").value().AsDword(), 0xFEDCBA98);
    const std::vector<RegistryKey> listed = registry.List(u"SOFTWARE\\vel").value();
    EXPECT_THAT(listed, ElementsAre(RegistryKey{u"Software\\Vel", {}},
                                    RegistryKey{u"Software\\Vel\\One",
                                                {{u"NÄME", RegistryValue::OfString(u"")},
                                                 {u"Näme", RegistryValue::OfDword(0xFEDCBA98)}}},
                                    RegistryKey{u"Software\\Vel\\Two", {{u"", odd}}}));
    EXPECT_THAT(registry.List(u"").value(), SizeIs(6)) << "the root, Software, Vel, Vel2 and the two below Vel";
    ASSERT_TRUE(registry.SetValue(u"", u"of the root", RegistryValue::OfDword(1)).ok());

    // All changes or none.
    const RegistryChange good{u"Software\\Vel", u"a", RegistryValue::OfDword(1)};
    const struct {
        RegistryChange change;
        StatusCode code;
    } bad[] = {
        {{u"Software", std::u16string(u"a\0b", 3), RegistryValue::OfDword(1)}, StatusCode::kInvalid},
        {{u"Software\\\xDC00", u"a", RegistryValue::OfDword(1)}, StatusCode::kInvalid},
        {{u"Software", u"ends in \xD83D", RegistryValue::OfDword(1)}, StatusCode::kInvalid},
        {{std::u16string(256, u'k'), u"a", RegistryValue::OfDword(1)}, StatusCode::kNameTooLong},
        {{u"Software", std::u16string(16384, u'n'), RegistryValue::OfDword(1)}, StatusCode::kNameTooLong},
        {{u"Software", u"a", RegistryValue{3, std::vector<std::byte>((1 << 20) + 1)}}, StatusCode::kFileTooLarge},
    };
    for (const auto& [change, code] : bad) {
        const RegistryChange both[] = {good, change};
        EXPECT_EQ(registry.Apply(both).code(), code);
        EXPECT_EQ(registry.QueryValue(u"Software\\Vel", u"a").code(), StatusCode::kNotFound);
    }
    const RegistryChange row[] = {good, {u"software\\vel", u"A", std::nullopt}, {u"New\\Key", u"b", odd}};
    EXPECT_TRUE(registry.Apply(row).ok());
    EXPECT_EQ(registry.QueryValue(u"Software\\Vel", u"a").code(), StatusCode::kNotFound);
    EXPECT_EQ(registry.QueryValue(u"new\\key", u"B").value(), odd);

    ASSERT_TRUE(registry.RemoveKey(u"software\\VEL").ok());
    EXPECT_THAT(registry.List(u"software").value(),
                ElementsAre(Field(&RegistryKey::path, u"Software"), Field(&RegistryKey::path, u"Software\\Vel2")));
    ASSERT_TRUE(registry.RemoveKey(u"").ok());
    EXPECT_THAT(registry.List(u"").value(), ElementsAre(RegistryKey{}));
}

TEST_F(SqliteRegistryTest, KeepsThePromisesOfARegistry) {
    KeepsThePromises(*Open());
    MemoryRegistry memory;
    KeepsThePromises(memory);
    EXPECT_THAT(damages_, IsEmpty());
}

TEST_F(SqliteRegistryTest, ReadsDataWhateverItsType) {
    const auto bytes = [](std::initializer_list<int> list) {
        RegistryValue value;
        for (const int one : list)
            value.data.push_back(static_cast<std::byte>(one));
        return value;
    };
    EXPECT_EQ(bytes({'A', 0, 'B', 0}).AsString(), u"AB");
    EXPECT_EQ(bytes({'A', 0, 0, 0, 'B', 0}).AsString(), u"A");
    EXPECT_EQ(bytes({'A', 0, 'B'}).AsString(), u"A");
    EXPECT_EQ(bytes({}).AsString(), u"");
    EXPECT_EQ(bytes({1, 2}).AsDword(), 0x201u);
    EXPECT_EQ(bytes({1, 2, 3, 4, 5}).AsDword(), 0x04030201u);
    EXPECT_EQ(RegistryValue::OfString(u"A").data, bytes({'A', 0, 0, 0}).data);
}

TEST_F(SqliteRegistryTest, LooksWithoutATraceAndWritesForItsUserOnly) {
    const auto registry = Open();
    EXPECT_EQ(registry->QueryValue(u"A", u"x").code(), StatusCode::kNotFound);
    EXPECT_THAT(registry->List(u"").value(), SizeIs(1));
    EXPECT_FALSE(std::filesystem::exists(temporary_.path() + "/config"));
    ASSERT_TRUE(registry->SetValue(u"A", u"x", RegistryValue::OfDword(1)).ok());
    EXPECT_EQ(ModeOf(folder_), 0700u);
    EXPECT_EQ(ModeOf(file_), 0600u);

    std::filesystem::remove_all(folder_);
    EXPECT_EQ(registry->QueryValue(u"A", u"x").code(), StatusCode::kNotFound) << "the file was taken away";
    ASSERT_TRUE(registry->SetValue(u"A", u"x", RegistryValue::OfDword(2)).ok());
    EXPECT_EQ(Open()->QueryValue(u"A", u"x").value().AsDword(), 2u);
    chmod(file_.c_str(), 0644);
    EXPECT_EQ(Open()->QueryValue(u"A", u"x").value().AsDword(), 2u);
    EXPECT_EQ(ModeOf(file_), 0600u);

    EXPECT_EQ(MakeSqliteRegistry("", *codec_, {})->SetValue(u"A", u"x", {}).code(), StatusCode::kAccessDenied);
    EXPECT_EQ(MakeSqliteRegistry("", *codec_, {})->QueryValue(u"A", u"x").code(), StatusCode::kNotFound);
}

TEST_F(SqliteRegistryTest, LeavesWhatItCannotWriteReadable) {
    WriteFile(temporary_.path() + "/config", "a file where the folder should be");
    const Status status = Open()->SetValue(u"A", u"x", RegistryValue::OfDword(1));
    EXPECT_EQ(status.code(), StatusCode::kNotFolder);
    EXPECT_EQ(status.path(), codec_->PathToInner(file_));
    std::filesystem::remove(temporary_.path() + "/config");

    ASSERT_TRUE(Open()->SetValue(u"A", u"x", RegistryValue::OfDword(1)).ok());
    AsOrdinaryUser([this] {
        chmod(file_.c_str(), 0400);
        chmod(folder_.c_str(), 0500);
        const auto registry = Open();
        EXPECT_EQ(registry->SetValue(u"A", u"x", RegistryValue::OfDword(2)).code(), StatusCode::kAccessDenied);
        EXPECT_EQ(registry->QueryValue(u"A", u"x").value().AsDword(), 1u);
        EXPECT_TRUE(registry->CreateKey(u"a").ok()) << "it is there";
        chmod(file_.c_str(), 0000);
        EXPECT_EQ(Open()->QueryValue(u"A", u"x").code(), StatusCode::kAccessDenied);
        EXPECT_EQ(Open()->HasKey(u"A").code(), StatusCode::kAccessDenied);
        chmod(file_.c_str(), 0600);
        WriteFile(file_, "damaged, and nothing can be renamed");
        const auto damaged = Open();
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(damaged->QueryValue(u"A", u"x").code(), StatusCode::kCorrupt);
        ASSERT_THAT(damages_, SizeIs(1)) << "said once";
        EXPECT_EQ(damages_[0].setAside, "");
        EXPECT_EQ(ReadFile(file_), "damaged, and nothing can be renamed");
        chmod(folder_.c_str(), 0700);
    });
    EXPECT_THAT(damages_, IsEmpty());
}

// Damage at the beginning, in the middle and at the end, a file of something else, and a torn journal beside it.
TEST_F(SqliteRegistryTest, SetsDamagedFilesAsideAndSaysSoOnce) {
    {
        std::vector<RegistryChange> changes;
        for (int i = 0; i < 200; ++i)
            changes.push_back({u"A", FormatInteger(i), RegistryValue::OfString(u"some text")});
        ASSERT_TRUE(Open()->Apply(changes).ok());
    }
    const std::string good = ReadFile(file_);
    ASSERT_GT(good.size(), size_t{3 * 4096});
    const auto withGarbage = [&good](size_t offset) { return std::string(good).replace(offset, 300, 300, '\x5A'); };
    const std::string cases[] = {withGarbage(0), withGarbage(4096 * 2), good.substr(0, good.size() / 2), "not a file"};
    int number = 0;
    for (const std::string& content : cases) {
        damages_.clear();
        WriteFile(file_, content);
        WriteFile(file_ + "-journal", "torn");
        const auto registry = Open();
        EXPECT_EQ(registry->QueryValue(u"A", u"7").code(), StatusCode::kNotFound);
        const std::string aside = file_ + ".damaged-" + std::to_string(++number);
        ASSERT_THAT(damages_, SizeIs(1));
        EXPECT_EQ(damages_[0].file, file_);
        EXPECT_EQ(damages_[0].setAside, aside);
        EXPECT_EQ(ReadFile(aside), content);
        EXPECT_FALSE(std::filesystem::exists(file_ + "-journal"));
        ASSERT_TRUE(registry->SetValue(u"A", u"new", RegistryValue::OfDword(1)).ok());
        EXPECT_EQ(Open()->QueryValue(u"A", u"new").value().AsDword(), 1u);
        EXPECT_THAT(damages_, SizeIs(1));
    }

    // A second program that had the file open when it broke goes on with the new one.
    WriteFile(file_, good);
    damages_.clear();
    const auto first = Open();
    const auto second = Open();
    EXPECT_TRUE(first->QueryValue(u"A", u"7").ok() && second->QueryValue(u"A", u"7").ok());
    std::filesystem::rename(file_, file_ + ".damaged-9");
    ASSERT_TRUE(first->SetValue(u"A", u"new", RegistryValue::OfDword(5)).ok());
    EXPECT_EQ(second->QueryValue(u"A", u"new").value().AsDword(), 5u);
    EXPECT_THAT(damages_, IsEmpty());
}

TEST_F(SqliteRegistryTest, LeavesALaterFormatAndALockedFileAlone) {
    ASSERT_TRUE(Open()->SetValue(u"A", u"x", RegistryValue::OfDword(1)).ok());
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(file_.c_str(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_EQ(Open(1)->SetValue(u"A", u"x", RegistryValue::OfDword(2)).code(), StatusCode::kLocked);
    EXPECT_EQ(Open(1)->QueryValue(u"A", u"x").code(), StatusCode::kLocked);
    ASSERT_EQ(sqlite3_exec(other, "PRAGMA user_version=2; COMMIT", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    const std::string content = ReadFile(file_);
    EXPECT_EQ(Open()->SetValue(u"A", u"x", RegistryValue::OfDword(2)).code(), StatusCode::kTooNew);
    EXPECT_EQ(Open()->QueryValue(u"A", u"x").code(), StatusCode::kTooNew);
    EXPECT_EQ(ReadFile(file_), content);
    EXPECT_THAT(damages_, IsEmpty());
}

// Programs that begin at once each keep what they wrote; one that is killed leaves whole changes only.
TEST_F(SqliteRegistryTest, ServesSeveralProgramsAndSurvivesAKill) {
    constexpr int kWriters = 4;
    constexpr int kWrites = 8;
    std::vector<pid_t> children;
    for (int writer = 0; writer < kWriters; ++writer) {
        const pid_t child = fork();
        if (child == 0) {
            const auto registry = MakeSqliteRegistry(file_, *codec_, {}, 60000);
            bool isGood = true;
            for (int i = 0; i < kWrites; ++i)
                isGood &= registry->SetValue(u"W", FormatInteger(writer * 100 + i), RegistryValue::OfDword(1)).ok();
            _exit(isGood ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int result = -1;
        waitpid(child, &result, 0);
        EXPECT_EQ(result, 0);
    }
    EXPECT_THAT(Open()->List(u"W").value().at(0).entries, SizeIs(kWriters * kWrites));

    for (int round = 0; round < 5; ++round) {
        int ready[2];
        ASSERT_EQ(pipe(ready), 0);
        const pid_t child = fork();
        if (child == 0) {
            const auto registry = Open();
            for (uint32_t i = 1;; ++i) {
                const RegistryChange both[] = {{u"K", u"a", RegistryValue::OfDword(i)},
                                               {u"K\\deep", u"b", RegistryValue::OfDword(i)}};
                if (!registry->Apply(both).ok()) _exit(1);
                if (i % 3 == 0 && write(ready[1], "x", 1) != 1) _exit(1);
            }
        }
        char byte;
        for (int i = 0; i <= round; ++i)
            ASSERT_EQ(read(ready[0], &byte, 1), 1);
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        close(ready[0]);
        close(ready[1]);
        const auto registry = Open();
        EXPECT_GE(registry->QueryValue(u"K", u"a").value().AsDword(), uint32_t(3 * (round + 1)));
        EXPECT_EQ(registry->QueryValue(u"K", u"a").value(), registry->QueryValue(u"K\\deep", u"b").value());
    }
    EXPECT_THAT(damages_, IsEmpty());
}

}  // namespace
}  // namespace kinsort
