// Faults planted in scripts: each is found, where it stands and nowhere else.
#include "script/ScriptCheck.h"

#include <gmock/gmock.h>

#include "platform/fake/MemoryFileSystem.h"
#include "text/EditDistance.h"
#include "text/Split.h"
#include "text/Utf16Bytes_test.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

std::vector<ScriptFinding> Check(std::string_view bytes) {
    MemoryFileSystem files;
    files.SetContent(u"C:\\a.txt", bytes);
    return CheckScript(files, u"C:\\a.txt").value_or(std::vector<ScriptFinding>{});
}

// "5 unknown-name: nothing is called ..." for each finding, by line.
std::vector<std::pair<int32_t, std::string>> Findings(std::string_view script) {
    std::vector<std::pair<int32_t, std::string>> found;
    for (const ScriptFinding& finding : Check(Utf16Bytes(FromUtf8(script)))) {
        found.emplace_back(finding.line, std::to_string(finding.column) + " " + std::string(finding.rule) + ": " +
                                             ToUtf8(finding.message));
    }
    return found;
}

// What the "//^" lines below a line say that is found in it.
std::vector<std::pair<int32_t, std::string>> Marks(std::string_view script) {
    std::vector<std::pair<int32_t, std::string>> marks;
    int32_t number = 0;
    int32_t meant = 0;
    for (const std::u16string& line : Split(FromUtf8(script), u'\n')) {
        ++number;
        if (line.starts_with(u"//^ "))
            marks.emplace_back(meant, ToUtf8(line.substr(4)));
        else
            meant = number;
    }
    return marks;
}

TEST(ScriptCheck, FindsEveryPlantedFaultInItsPlace) {
    constexpr std::string_view kScript = R"(// names
var count
var Countdown
var counted
//^ 5 declaration: "counted" holds "count" of line 2: names are filled in anywhere, so none may hold another
var Goto
//^ 5 declaration: "Goto" is a word of the language
var count = 5
//^ 5 declaration: "count" is declared already, in line 2
var item[3]
var item[count]
//^ 5 declaration: nothing is filled in here: this declares one element that is called "item[count]"
//^ 5 declaration: "item[count]" holds "count" of line 2: names are filled in anywhere, so none may hold another
var filter
//^ 5 declaration: "filter" is an option: a line "filter=..." sets that
var list[2] = 5
//^ 5 declaration: an array as a whole takes no value
var list[-1]
//^ 1 declaration: this declares nothing, and ends the run without a word
var
//^ 1 operand: "var" needs a name
item[3]=x
//^ 1 unknown-name: "item[3]" is none of the declared elements of "item"
 cuont=1
//^ 2 unknown-name: nothing is called "cuont"; did you mean "count"?
mesagebox=0,hi
//^ 1 unknown-name: nothing is called "mesagebox"; did you mean "messagebox"?
colour=red
//^ 1 unknown-name: nothing is called "colour": the line does nothing
messagebox 0,hi
//^ 1 unknown-line: nothing knows this line: "messagebox" needs a "=" behind it
var Title
// values
Title=lefft,2,abc
//^ 7 function: "lefft" is no function; did you mean "left"?
Title=SubString,2,abc
//^ 7 arguments: "SubString" needs 3 arguments (start,count,text); here is 2
Title=GetClipboardText,1
//^ 7 arguments: "GetClipboardText" takes no arguments: the text itself is stored
Title= ?Date?
//^ 8 sum: this is worked out as a sum (2025-01-05 gives 2019); write string,?Date?
Title=1/0
//^ 7 sum: this sum divides by zero
Title=(1+2
//^ 7 sum: this is worked out as a sum, but is none
Title=from ?SelFlie? on ?date?
//^ 12 token: "?SelFlie?" stands for nothing; did you mean "?SelFile?"?
//^ 25 token: "?date?" stands for nothing; did you mean "?Date?"?
writeregnum=Key,Name
//^ 13 arguments: "writeregnum" needs 3 arguments (key,name,number); here is 2
bomout=1,2
//^ 8 arguments: "bomout" takes 1 argument (switch); here is 2
var tE
Title=GetExt,a.b
//^ 7 name-inside: a variable is filled in inside of "GetExt" before the function is looked for
var Nam
Title=GetName,?Name?
//^ 7 name-inside: a variable is filled in inside of "GetName" before the function is looked for
//^ 15 name-inside: a variable is filled in inside of "?Name?" first
// blocks
if count = 1
//^ 10 condition: "=" is no operator; did you mean "=="?
	if count
//^ 5 condition: this condition has no operator (== != < > <= >= ^ !^)
	endif
else
else
//^ 1 block: a second "else" for the "if" of line 61
endif
if count => 1
//^ 10 condition: "=>" is no operator; did you mean ">="?
for
//^ 1 block: "for" without "next"
do
endif
//^ 1 block: "endif" of the "if" of line 70 while the "do" of line 74 is still open
for
//^ 1 nested-loop: a "for" inside of a "for": both walk the same items together
removeselectitems
//^ 1 loop: the items cannot be removed while a "for" walks them
next item
//^ 1 block: only a line that is nothing but "next" ends a loop that is skipped
while
//^ 1 operand: "while" needs a condition
while 1 < 2
//^ 1 block: "while" without "do"
break
exit
//^ 1 unreachable: this line is never run: line 87 always leaves
Again:
Title=back:
goto agian
//^ 6 label: there is no label "agian"; did you mean "Again"?
Title=back:
//^ 1 label: the label "Title=back" is defined already, in line 91 (a line that ends with ":" is one, whatever else it does)
goto Notes
//^ 6 label: the label "Notes" stands behind "EOF", where nothing is read
EOF
Notes:
whatever = 5
)";
    EXPECT_THAT(Findings(kScript), testing::UnorderedElementsAreArray(Marks(kScript)));
    EXPECT_GE(Marks(kScript).size(), 30u);
}

TEST(ScriptCheck, KeepsSilentWhereOnlyARunCanTell) {
    constexpr std::string_view kScript = R"(
debug
var arg = 2,abc
var piece[2]
var index = 1
var label = End
piece[index]=left,arg
piece[0]=Hello, world
piece[1]=string,?Date?
piece[0]=10-4
piece[0]=-5
piece[0]=backup_?Date?.txt
piece[0]=?Name? or ?any? of a?b*c? 100%
bomout=arg
writeregstring=Key,Name,a,b,c
icon=x.ico,3
timeout=-1
if ?SelectedCount? == 0
	var Once = 1
else
	var Once = 2
endif
do
	if index > 3
		break
	endif
	index=+1
	continue
	Skipped:
while index < 9
for
	if ?Ext? ^ *.txt;*.log
		exrun=?selfile?
	endif
next
goto label
End:
fileclose
REMOVESELECTITEMS
exit
)";
    EXPECT_THAT(Findings(kScript), testing::IsEmpty());
    EXPECT_THAT(Findings("Title=1\nvar Title\n"),
                testing::ElementsAre(testing::Pair(1, "1 unknown-name: \"Title\" is declared only in line 2")));
    EXPECT_THAT(Findings("goto Set\nUse:\nTitle=1\nexit\nSet:\nvar Title\ngoto Use\n"), testing::IsEmpty());
    EXPECT_THAT(Findings(""), testing::IsEmpty());
    // A variable that an included script may declare.
    for (const std::string path : {"other.txt", "C:\\%X%a.txt", "C:\\?Name?", "C:\\arg.txt"}) {
        EXPECT_THAT(Findings("var arg\ninclude=" + path + "\nfarAway=1\ninclud=x\n"),
                    testing::ElementsAre(
                        testing::Pair(4, "1 unknown-name: nothing is called \"includ\"; did you mean \"include\"?")))
            << path;
    }
}

TEST(ScriptCheck, FollowsIncludedScriptsOnce) {
    MemoryFileSystem files;
    const std::pair<std::u16string_view, std::u16string_view> scripts[] = {
        {u"C:\\s\\main.ecs",
         u"var count\nif 1 == 1\ninclude=?ScriptPath?lib\\one.ecs\nelse\ninclude=C:\\s\\two.ecs\nendif\n"
         u"shared=1\nown:\nfarAway=1\n"},
        {u"C:\\s\\lib\\one.ecs", u"var shared=1\ncount=1\nvar counter\ninclude=?ScriptPath?..\\main.ecs\ngoto own\n"},
        {u"C:\\s\\two.ecs", u"var shared=2\ninclude=C:\\s\\LIB\\..\\lib\\one.ecs\n"},
    };
    for (const auto& [path, text] : scripts)
        files.SetContent(path, Utf16Bytes(text));
    const std::vector<ScriptFinding> findings = *CheckScript(files, u"C:\\s\\main.ecs");
    std::vector<std::string> found;
    for (const ScriptFinding& finding : findings)
        found.push_back(ToUtf8(finding.file) + ":" + std::to_string(finding.line) + " " + ToUtf8(finding.message));
    EXPECT_THAT(found,
                testing::ElementsAre(
                    "C:\\s\\main.ecs:9 nothing is called \"farAway\": the line does nothing",
                    "C:\\s\\lib\\one.ecs:3 \"counter\" holds \"count\" of line 1 of main.ecs: names are filled in "
                    "anywhere, so none may hold another",
                    "C:\\s\\lib\\one.ecs:5 there is no label \"own\""));
}

TEST(ScriptCheck, TellsOfFilesThatAreNoScripts) {
    MemoryFileSystem files;
    EXPECT_FALSE(CheckScript(files, u"C:\\missing.txt").has_value());
    const std::vector<ScriptFinding> bytes = Check("var x\r\nx=1\r\nmessageboxok=eight bits");
    ASSERT_EQ(bytes.size(), 1u);
    EXPECT_EQ(bytes[0].rule, "encoding");

    const std::vector<ScriptFinding> endless =
        Check(Utf16Bytes(u"nonsense\n" + std::u16string(32'767, u'x') + u"\nmore"));
    ASSERT_EQ(endless.size(), 2u);
    EXPECT_EQ(endless[0].line, 1);
    EXPECT_EQ(endless[0].text, u"nonsense");
    EXPECT_EQ(endless[0].length, 8u);
    EXPECT_EQ(endless[1].line, 2);
    EXPECT_EQ(endless[1].rule, "line-length");
}

TEST(EditDistance, CountsSwapsAsOne) {
    const struct {
        std::u16string_view a, b;
        size_t distance;
        bool isTypo;
    } cases[] = {
        {u"", u"", 0, false},          {u"", u"abc", 3, false},
        {u"left", u"LEFT", 0, true},   {u"lefft", u"left", 1, true},
        {u"elft", u"left", 1, true},   {u"list", u"left", 2, false},
        {u"if", u"of", 1, false},      {u"mesagebx", u"messagebox", 2, true},
        {u"endfi", u"endif", 1, true}, {u"kitten", u"sitting", 3, false},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(EditDistance(row.a, row.b), row.distance) << testing::PrintToString(row.a);
        EXPECT_EQ(EditDistance(row.b, row.a), row.distance);
        EXPECT_EQ(LooksLikeTypo(row.a, row.b), row.isTypo) << testing::PrintToString(row.a);
    }
}

}  // namespace
}  // namespace kinsort
