// The help page that F1 opens, as it is built, against the dialog and the arguments that it explains.
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/DialogTemplate.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

std::string ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A label as people speak of it: without its accelerator and line breaks.
std::string Spoken(std::string text) {
    if (const size_t mark = text.find("(&"); mark != text.npos) text.erase(mark);
    std::string spoken;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "\\n") == 0) {
            spoken += ' ';
            ++i;
        } else if (text[i] != '&' && text[i] != '\n') {
            spoken += text[i];
        }
    }
    return spoken;
}

bool IsPressed(const DialogControl& control) {
    return control.kind != ControlKind::kStatic && !control.text.empty();
}

TEST(HelpPage, ExplainsEveryButtonInBothLanguages) {
    const std::string page = ReadBytes(KINSORT_BUILT_TEXTS "/docs/vel/man5/6.Command/2.DefaultCommand/Kinsort.html");
    const size_t middle = page.find("<section id=\"en\"");
    ASSERT_NE(middle, page.npos);
    const std::string japanese = page.substr(0, middle);
    const std::string english = page.substr(middle);
    for (const DialogControl& control : kDialogControls) {
        if (!IsPressed(control)) continue;
        const std::string label = Spoken(ToUtf8(control.text));
        EXPECT_NE(japanese.find(label), japanese.npos) << label;
    }
    std::ifstream translation(KINSORT_ENGLISH_TEXTS);
    int labels = 0;
    for (std::string line; std::getline(translation, line);) {
        const size_t text = line.find("\tButton\t");
        if (text == line.npos) continue;
        const std::string label = Spoken(line.substr(text + 8));
        EXPECT_NE(english.find(label), english.npos) << label;
        ++labels;
    }
    EXPECT_GE(labels, 10);
    for (const char* argument : {"/c", "/m", "/2c", "/2m"})
        EXPECT_NE(english.find(std::string("<code>") + argument + "</code>"), english.npos) << argument;
}

}  // namespace
}  // namespace kinsort
