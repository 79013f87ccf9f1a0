// The dialog's translations and the help page that F1 opens, against the dialog that they are for.
#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "app/DialogTemplate.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// To add one: a language whose dialog texts are shipped.
constexpr const char* kLanguages[] = {"en-US"};

using TextsById = std::map<int, std::u16string>;

// Looks at each line of the file on the way.
TextsById ReadTranslation(const std::string& language) {
    std::ifstream file(std::string(KINSORT_LANGUAGES "/") + language + "/Kinsort/102.txt");
    TextsById texts;
    bool hasTitle = false;
    for (std::string line; std::getline(file, line) && line != "EOF";) {
        if (line.starts_with("//")) continue;
        SCOPED_TRACE(line);
        const auto fields = Split(FromUtf8(line), u'\t');
        if (fields.size() == 1) {
            EXPECT_FALSE(std::exchange(hasTitle, true));
            continue;
        }
        const DialogControl* const control = fields.size() == 3 ? FindControl(ReadInt32(fields[0])) : nullptr;
        if (control == nullptr) {
            ADD_FAILURE() << "not the number of a control, its class and a text";
            continue;
        }
        EXPECT_EQ(fields[1], WindowClassOf(control->kind));
        EXPECT_FALSE(fields[2].empty());
        EXPECT_TRUE(texts.emplace(control->id, fields[2]).second) << "a second time";
    }
    EXPECT_TRUE(hasTitle);
    return texts;
}

bool IsAscii(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), [](char16_t unit) { return unit < 0x80; });
}

// The letter behind the "&", lower case; 0 when there is none.
char16_t Accelerator(std::u16string_view text) {
    const size_t mark = text.find(u'&');
    return mark + 1 < text.size() && mark != text.npos ? static_cast<char16_t>(std::tolower(text[mark + 1])) : u'\0';
}

TEST(DialogTranslations, NameEachControlAsTheDialogHasIt) {
    for (const char* language : kLanguages) {
        SCOPED_TRACE(language);
        const TextsById texts = ReadTranslation(language);
        std::set<char16_t> accelerators;
        for (const DialogControl& control : kDialogControls) {
            SCOPED_TRACE(control.id);
            const auto found = texts.find(control.id);
            if (found == texts.end()) {
                EXPECT_TRUE(IsAscii(control.text)) << "is missing";
                continue;
            }
            const char16_t letter = Accelerator(found->second);
            EXPECT_TRUE(Accelerator(control.text) == 0 || letter != 0) << "no accelerator";
            EXPECT_TRUE(letter == 0 || accelerators.insert(letter).second) << "the accelerator of another control";
        }
    }
}

// A label as people speak of it: without its accelerator and line breaks.
std::string Spoken(std::u16string_view label) {
    const std::u16string plain = Replace(Replace(label.substr(0, label.find(u"(&")), u"\\n", u" "), u"\n", u"");
    return ToUtf8(Replace(plain, u"&", u""));
}

TEST(HelpPage, ExplainsEveryButtonInBothLanguages) {
    std::ifstream file(KINSORT_HELP "/6.Command/2.DefaultCommand/Kinsort.html");
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    const size_t middle = page.find("<section id=\"en\"");
    ASSERT_NE(middle, page.npos);
    const std::string japanese = page.substr(0, middle);
    const std::string english = page.substr(middle);
    TextsById translated = ReadTranslation("en-US");
    for (const DialogControl& control : kDialogControls) {
        if (control.kind == ControlKind::kStatic || control.text.empty()) continue;
        const auto text = translated.try_emplace(control.id, control.text).first;
        EXPECT_NE(japanese.find(Spoken(control.text)), japanese.npos) << Spoken(control.text);
        EXPECT_NE(english.find(Spoken(text->second)), english.npos) << Spoken(text->second);
    }
    for (const char* argument : {"/c", "/m", "/2c", "/2m"})
        EXPECT_NE(english.find(std::string("<code>") + argument + "</code>"), english.npos) << argument;
}

}  // namespace
}  // namespace kinsort
