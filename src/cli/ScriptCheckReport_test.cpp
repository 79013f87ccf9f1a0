// "kinsort script check", as it is printed.
#include <gtest/gtest.h>

#include "cli/CliFixture_test.h"
#include "text/Utf16Bytes_test.h"

namespace kinsort {
namespace {

class ScriptCheckReportTest : public testing::Test, protected CliFixture {
  protected:
    void AddScript(std::u16string_view path, std::u16string_view text) { files.SetContent(path, Utf16Bytes(text)); }
    int Run(const std::vector<std::string>& arguments) {
        terminal.output.clear();
        terminal.messages.clear();
        return RunKinsort(services, arguments);
    }
};

TEST_F(ScriptCheckReportTest, MarksWhatIsMeantUnderTheLine) {
    AddScript(u"Z:\\good.txt", u"var x1\nx1=1\n");
    AddScript(u"Z:\\bad.txt", u"if 1 == 1\n\t漢字 cuont=1\u001B[1m\nendif\nelse\ninclude=?ScriptPath?lib\\a b\n");
    AddScript(u"Z:\\lib\\a b", u"next\n");
    EXPECT_EQ(Run({"script", "check", "/good.txt"}), 0);
    EXPECT_EQ(terminal.output, "");
    EXPECT_EQ(Run({"script", "check", "/good.txt", "/bad.txt"}), 1);
    EXPECT_EQ(terminal.output,
              "/bad.txt:2:2: nothing is called \"漢字 cuont\": the line does nothing\n"
              "     漢字 cuont=1\\x1b[1m\n"
              "     ^~~~~~~~~~\n"
              "/bad.txt:4:1: \"else\" without \"if\"\n"
              "    else\n"
              "    ^~~~\n"
              "/lib/a b:1:1: \"next\" without \"for\"\n"
              "    next\n"
              "    ^~~~\n");
    EXPECT_EQ(terminal.messages, "");
}

TEST_F(ScriptCheckReportTest, GivesEditorsJson) {
    AddScript(u"Z:\\bad.txt", u"next\n");
    EXPECT_EQ(Run({"script", "check", "--json", "/bad.txt", "/gone.txt"}), 3);
    EXPECT_EQ(terminal.messages, "kinsort: script: /gone.txt: it does not exist; check the name and the folder\n");
    EXPECT_EQ(terminal.output,
              "[\n"
              R"({"file": "/bad.txt", "line": 1, "column": 1, "length": 4, "rule": "block", )"
              R"("message": "\"next\" without \"for\""})"
              "\n]\n");
    EXPECT_EQ(Run({"script", "check", "--json"}), 2);
}

}  // namespace
}  // namespace kinsort
