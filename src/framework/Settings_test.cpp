#include "framework/Settings.h"

#include <gmock/gmock.h>

#include "platform/fake/MemoryRegistry.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kOwnKey = u"Software\\TEV_Soft\\VEL\\Command\\Kinsort";

TEST(Settings, ReadsWhateverTypeIsStoredUpToItsLimit) {
    const struct {
        const char* what;
        RegistryValue value;
        std::u16string text;
        uint32_t number;
    } cases[] = {
        {"a text", RegistryValue::OfString(u"C"), u"C", 0x43},
        {"a longer text", RegistryValue::OfString(u"D:\\Data"), u"D:\\Data", 0},
        {"a number", RegistryValue::OfDword(0x00420041), u"AB", 0x00420041},
        {"two bytes", {kRegistryBinary, {std::byte{0x41}, std::byte{0}}}, u"A", 0x41},
        {"nothing", {0, {}}, u"", 0},
        {"five bytes", {kRegistryBinary, std::vector<std::byte>(5)}, u"", 0},
        {"as long as can be", RegistryValue::OfString(std::u16string(16383, u'x')), std::u16string(16383, u'x'), 0},
        {"one too long", RegistryValue::OfString(std::u16string(16384, u'x')), u"default", 0},
    };
    MemoryRegistry registry;
    Settings settings(registry, u"Kinsort");
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        ASSERT_TRUE(registry.SetValue(kSettingsKey, u"Value", one.value).ok());
        EXPECT_EQ(settings.ReadSettingString(u"VALUE", u"default"), one.text);
        EXPECT_EQ(settings.ReadSettingDword(u"value"), one.number);
    }
    EXPECT_EQ(settings.ReadSettingString(u"Absent", u"default"), u"default");
    EXPECT_EQ(settings.ReadSettingDword(u"Absent"), 0u);
}

// The two spellings of the host's key name the same place.
TEST(Settings, KeepsTheCommandsOwnValuesApart) {
    MemoryRegistry registry;
    Settings settings(registry, u"Kinsort");
    EXPECT_EQ(settings.CommandKey(), kOwnKey);
    EXPECT_EQ(settings.ReadCommandDword(kConfirmName), std::nullopt);
    EXPECT_TRUE(registry.HasKey(kOwnKey).value()) << "opening makes the key";
    EXPECT_EQ(settings.WriteCommandDword(kConfirmName, 0), 1);
    EXPECT_EQ(settings.ReadCommandDword(kConfirmName), 0u);
    EXPECT_EQ(settings.WriteCommandString(u"Kinsort000", u"Z:\\home\\me"), 1);
    const std::pair<std::u16string, std::u16string> row[] = {{u"Kinsort001", u"a"}, {u"Kinsort002", u""}};
    const int writesBefore = registry.writes;
    EXPECT_EQ(settings.WriteCommandStrings(row), 1);
    EXPECT_EQ(registry.writes, writesBefore + 1);
    EXPECT_EQ(settings.ReadCommandString(u"kinsort000"), u"Z:\\home\\me");
    EXPECT_EQ(settings.ReadCommandString(u"Kinsort002", u"default"), u"");
    EXPECT_EQ(settings.ReadSettingString(u"Kinsort000", u"none"), u"none");
    EXPECT_EQ(settings.WriteRegDword(u"software\\tev_soft\\vel\\COMMAND\\kinsort", u"n", 7), 1);
    EXPECT_EQ(settings.ReadCommandDword(u"n"), 7u);
    const RegistryValue stored = registry.QueryValue(kOwnKey, u"Kinsort001").value();
    EXPECT_EQ(stored, RegistryValue::OfString(u"a")) << "with its NUL";
}

TEST(Settings, AnswersWithoutARegistry) {
    MemoryRegistry registry;
    Settings writer(registry, u"Kinsort");
    ASSERT_EQ(writer.WriteRegString(kSettingsKey, kLanguageName, u".en-US"), 1);
    ASSERT_EQ(writer.WriteRegDword(kSettingsKey, kTextExportName, 2), 1);
    EXPECT_EQ(writer.LanguageSuffix(), u".en-US");
    EXPECT_TRUE(writer.IsTextExportOn());
    registry.failWrites = Status::Failure(StatusCode::kAccessDenied);
    EXPECT_EQ(writer.WriteCommandString(u"a", u"b"), 0);
    EXPECT_EQ(writer.WriteCommandStrings({}), 0);
    Settings reader(registry, u"Kinsort");
    EXPECT_EQ(reader.LanguageSuffix(), u".en-US") << "a key that is there can be read";
    EXPECT_EQ(reader.ReadCommandString(u"a", u"default"), u"default");

    registry.failReads = Status::Failure(StatusCode::kIo);
    Settings blind(registry, u"Kinsort");
    EXPECT_EQ(blind.LanguageSuffix(), u".ja-JP");
    EXPECT_FALSE(blind.IsTextExportOn());
    EXPECT_EQ(blind.ReadCommandDword(kConfirmName), std::nullopt);
    registry.failReads = {};
    EXPECT_EQ(blind.LanguageSuffix(), u".ja-JP") << "read once";
}

}  // namespace
}  // namespace kinsort
