// The shipped translations of the dialog, as they are built, against the dialog they are for.
#include <algorithm>
#include <cctype>
#include <set>

#include <gtest/gtest.h>

#include "app/DialogTemplate.h"
#include "framework/TextFile.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// To add one: a language whose dialog texts are shipped.
constexpr const char16_t* kLanguages[] = {u".en-US"};

bool IsAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// The letter behind the "&", lower case; 0 when there is none.
char16_t Accelerator(std::u16string_view text) {
    const size_t mark = text.find(u'&');
    return mark + 1 < text.size() && mark != text.npos ? static_cast<char16_t>(std::tolower(text[mark + 1])) : u'\0';
}

TEST(DialogTranslations, NameEachControlAsTheDialogHasIt) {
    const auto codec = MakeLinuxPathCodec("");
    const auto files = MakeLinuxFileSystem(*codec);
    for (const std::u16string language : kLanguages) {
        SCOPED_TRACE(ToUtf8(language));
        CTextFile file(*files);
        const std::u16string folder = codec->PathToInner(KINSORT_COMMAND_FOLDER);
        ASSERT_EQ(file.Open(folder + u"\\" + language + u"\\Kinsort\\102.txt"), 1);
        std::set<int> translated;
        std::set<char16_t> accelerators;
        bool hasTitle = false;
        for (std::u16string_view line; file.ReadLine(line) && line != u"EOF";) {
            if (line.starts_with(u"//")) continue;
            SCOPED_TRACE(ToUtf8(line));
            const auto fields = Split(line, u'\t');
            if (fields.size() == 1) {
                EXPECT_FALSE(hasTitle);
                hasTitle = true;
                continue;
            }
            ASSERT_EQ(fields.size(), 3u);
            const DialogControl* control = FindControl(ReadInt32(fields[0]));
            ASSERT_NE(control, nullptr);
            EXPECT_EQ(fields[1], WindowClassOf(control->kind));
            EXPECT_FALSE(fields[2].empty());
            EXPECT_TRUE(translated.insert(control->id).second) << "a second time";
            EXPECT_TRUE(Accelerator(control->text) == 0 || Accelerator(fields[2]) != 0) << "no accelerator";
            if (const char16_t letter = Accelerator(fields[2])) {
                EXPECT_TRUE(accelerators.insert(letter).second) << "the accelerator of another control";
            }
        }
        EXPECT_TRUE(hasTitle);
        for (const DialogControl& control : kDialogControls) {
            EXPECT_TRUE(IsAscii(control.text) || translated.contains(control.id)) << control.id << " is missing";
        }
    }
}

}  // namespace
}  // namespace kinsort
