#include "platform/linux/LinuxPathCodec.h"

#include <filesystem>
#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {
namespace {

using namespace std::string_literals;

class LinuxPathCodecTest : public testing::Test {
  protected:
    TemporaryFolder folder_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec(folder_.path() + "/drives");
};

// Every name of one and of two bytes, and random longer ones made of the bytes that matter.
std::vector<std::string> ManyNames() {
    std::vector<std::string> names;
    for (int a = 1; a < 256; ++a) {
        if (a == '/') continue;
        names.push_back({static_cast<char>(a)});
        for (int b = 1; b < 256; ++b) {
            if (b != '/') names.push_back({static_cast<char>(a), static_cast<char>(b)});
        }
    }
    constexpr std::string_view kPieces[] = {
        "a",    "\\",   "\x01", "\x7F", "\x80", "\xBF",         "\xC3",         "\xA9",         "\xE3\x81\x82",
        "\xED", "\xA0", "\xEE", "\xEF", "\x81", "\xEF\x80\x80", "\xEF\x81\x9C", "\xEF\x82\x80", "\xF0\x90\x82\x80",
        "\xF4", "\xFF", ".",    ":"};
    std::mt19937 random(7);
    for (int i = 0; i < 100'000; ++i) {
        std::string name;
        for (size_t n = 1 + random() % 6; n > 0; --n)
            name += kPieces[random() % std::size(kPieces)];
        names.push_back(name);
    }
    return names;
}

TEST_F(LinuxPathCodecTest, EveryNameRoundTripsAndNoTwoMeet) {
    std::map<std::u16string, std::string> seen;
    for (const std::string& name : ManyNames()) {
        const std::u16string inner = codec_->NameToInner(name);
        ASSERT_EQ(codec_->NameToStored(inner), name) << testing::PrintToString(name);
        ASSERT_EQ(inner.find_first_of(u"\\/\n\x7F"), std::u16string::npos) << testing::PrintToString(name);
        const auto [place, isNew] = seen.emplace(inner, name);
        ASSERT_TRUE(isNew || place->second == name) << testing::PrintToString(name);
    }
}

TEST_F(LinuxPathCodecTest, NamesLookAsTheyShould) {
    struct Case {
        std::string stored;
        std::u16string inner;
    };
    const Case cases[] = {
        {"", u""},
        {"plain.txt", u"plain.txt"},
        {"\xE3\x81\x82\xF0\x9F\x98\x80", u"\u3042\U0001F600"},
        {"a\\b\n", u"a\uF05Cb\uF00A"},
        {"\xE9", {0xDCE9}},
        {"\xEF\x81\x9C", {0xDCEF, 0xDC81, 0xDC9C}},  // U+F05C itself
        {"\xEF\x82\x80", u"\uF080"},                 // the first that needs no escape
        {"\xED\xA0\x80", {0xDCED, 0xDCA0, 0xDC80}},  // a surrogate in disguise
        {"\xF0\x90\x82\x80", {0xD800, 0xDC80}},      // a pair whose half looks like an escape
    };
    for (const Case& c : cases) {
        EXPECT_EQ(codec_->NameToInner(c.stored), c.inner) << c.stored;
        EXPECT_EQ(codec_->NameToStored(c.inner), c.stored) << c.stored;
    }
}

// Texts that come from scripts, not from a listing: never a separator, never an end, never "..".
TEST_F(LinuxPathCodecTest, TextsThatNoNameGivesAreTamed) {
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        const std::string stored = codec_->NameToStored(std::u16string{static_cast<char16_t>(unit)});
        ASSERT_FALSE(stored.empty()) << unit;
        ASSERT_EQ(stored.find_first_of("/\0"s), std::string::npos) << unit;
        ASSERT_EQ(stored == ".", unit == '.') << unit;
    }
    EXPECT_EQ(codec_->NameToStored(u"a\\b\t"), "a\\b\t");
    EXPECT_EQ(codec_->NameToStored(std::u16string{0xD800, u'x'}), "\xED\xA0\x80x");
    EXPECT_EQ(codec_->NameToStored(u"\uF041"), "\xEF\x81\x81");
}

TEST_F(LinuxPathCodecTest, PathsGoBothWays) {
    struct Case {
        std::string stored;
        std::u16string inner;
    };
    const Case cases[] = {
        {"/", u"Z:\\"},
        {"/home/me/a b.txt", u"Z:\\home\\me\\a b.txt"},
        {"/x\\y/\xFF", std::u16string(u"Z:\\x\uF05Cy\\") + char16_t{0xDCFF}},
        {"/c:/d", u"Z:\\c:\\d"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(codec_->PathToInner(c.stored), c.inner);
        EXPECT_EQ(*codec_->PathToStored(c.inner), c.stored);
    }
    EXPECT_EQ(codec_->PathToInner("//home///me/"), u"Z:\\home\\me\\");
    EXPECT_EQ(codec_->PathToInner("a/b"), u"a\\b");
    EXPECT_EQ(codec_->PathToInner("c:/b"), u".\\c:\\b");
    EXPECT_EQ(codec_->PathToInner("Z:/b"), u".\\Z:\\b");
    EXPECT_EQ(codec_->PathToInner(""), u"");
    EXPECT_EQ(*codec_->PathToStored(u"\\\\?\\z:/home\\\\me\\"), "/home/me");
    EXPECT_EQ(*codec_->PathToStored(u"Z:"), "/");
    EXPECT_EQ(*codec_->PathToStored(u"Z:\\..\\a\\.\\b\\..\\c"), "/a/c");
    EXPECT_EQ(*codec_->PathToStored(u"Z:\\a/..\\..\\etc"), "/etc");
}

TEST_F(LinuxPathCodecTest, DrivesAndSharesAreResolved) {
    namespace fs = std::filesystem;
    const std::string data = folder_.path() + "/data";
    fs::create_directories(data + "/in");
    fs::create_directories(folder_.path() + "/drives/unc/nas/Photos");
    fs::create_directory_symlink(data, folder_.path() + "/drives/c:");
    fs::create_directory_symlink("/", folder_.path() + "/drives/r:");
    fs::create_directory_symlink("nowhere", folder_.path() + "/drives/d:");
    fs::create_directory_symlink(data, folder_.path() + "/drives/unc/nas/data");

    EXPECT_EQ(*codec_->PathToStored(u"C:\\"), data);
    EXPECT_EQ(*codec_->PathToStored(u"c:\\in\\x"), data + "/in/x");
    EXPECT_EQ(*codec_->PathToStored(u"C:\\..\\..\\x"), data + "/x");
    EXPECT_EQ(*codec_->PathToStored(u"R:\\"), "/");
    EXPECT_EQ(*codec_->PathToStored(u"R:\\etc"), "/etc");
    EXPECT_EQ(*codec_->PathToStored(u"\\\\nas\\data\\in"), data + "/in");
    EXPECT_EQ(*codec_->PathToStored(u"\\\\?\\UNC\\nas\\Photos"), folder_.path() + "/drives/unc/nas/Photos");
    EXPECT_EQ(*codec_->PathToStored(u"\\\\NAS\\DATA"), data);

    struct Bad {
        std::u16string_view path;
        StatusCode code;
    };
    const Bad bad[] = {
        {u"D:\\x", StatusCode::kNotFound},
        {u"E:\\x", StatusCode::kNotFound},
        {u"\\\\nas\\no", StatusCode::kNotFound},
        {u"\\\\..\\nas\\x", StatusCode::kInvalid},
        {u"\\\\nas\\..\\x", StatusCode::kInvalid},
        {u"\\\\nas", StatusCode::kInvalid},
        {u"a\\b", StatusCode::kInvalid},
        {u"\\a", StatusCode::kInvalid},
        {u"C:a", StatusCode::kInvalid},
        {u"", StatusCode::kInvalid},
        {u"\\\\.\\pipe\\x", StatusCode::kInvalid},
        {u"/home/me", StatusCode::kInvalid},
    };
    EXPECT_EQ(MakeLinuxPathCodec("")->PathToStored(u"C:\\").code(), StatusCode::kNotFound);
    for (const Bad& b : bad) {
        const Result<std::string> result = codec_->PathToStored(b.path);
        EXPECT_EQ(result.code(), b.code) << testing::PrintToString(b.path);
        EXPECT_EQ(result.status().path(), b.path);
    }
}

TEST_F(LinuxPathCodecTest, PeopleSeeNativePathsWithoutTricks) {
    EXPECT_EQ(codec_->PathForPeople(u"Z:\\home\\me\\\u3042.txt"), "/home/me/\xE3\x81\x82.txt");
    EXPECT_EQ(codec_->PathForPeople(u"Z:\\"), "/");
    EXPECT_EQ(codec_->PathForPeople(codec_->PathToInner("/a\x1B[2J\n\xFF\\")), "/a\\x1B[2J\\x0A\\xFF\\");
    EXPECT_EQ(codec_->PathForPeople(u"Z:\\a\u009Bb\u202Egpj.exe"), "/a\\xC2\\x9Bb\\xE2\\x80\\xAEgpj.exe");
    EXPECT_EQ(codec_->PathForPeople(u"Q:\\not set up\\\x07"), "Q:\\not set up\\\\x07");
    EXPECT_EQ(codec_->PathForPeople(u"a\\b/c"), "a\\b/c");
}

}  // namespace
}  // namespace kinsort
