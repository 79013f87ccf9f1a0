#include "script/reference/EditorSyntax.h"

#include <span>
#include <string_view>
#include <vector>

#include "script/ExpandLine.h"
#include "script/FunctionTable.h"
#include "script/OptionLines.h"
#include "script/ScriptLine.h"
#include "script/StatementTable.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using Names = std::vector<std::string>;

template <typename Row>
Names NamesOf(std::span<const Row> rows, std::u16string_view Row::*name) {
    Names names;
    for (const Row& row : rows)
        names.push_back(ToUtf8(row.*name));
    return names;
}

Names WordNames() {
    Names names;
    for (const std::u16string_view word : StatementWords())
        names.push_back(ToUtf8(word));
    return names;
}

Names TokenNames() {
    Names names;
    for (const TokenHelp& row : ListTokens())
        names.push_back(ToUtf8(row.token));
    return names;
}

std::string Join(const Names& names, std::string_view separator) {
    std::string text;
    for (const std::string& name : names)
        text.append(text.empty() ? "" : separator).append(name);
    return text;
}

// "\%(a\|b\)".
std::string VimChoice(const Names& names) {
    return "\\%(" + Join(names, "\\|") + "\\)";
}

std::string VimMatch(std::string_view group, const std::string& pattern) {
    return "syntax match " + std::string(group) + " /" + pattern + "/\n";
}

std::string KateList(std::string_view name, const Names& names) {
    return "    <list name=\"" + std::string(name) + "\">\n      <item>" + Join(names, "</item>\n      <item>") +
           "</item>\n    </list>\n";
}

// "\?Date\?|\?Time\?".
std::string KateTokens() {
    std::string pattern;
    for (const char c : Join(TokenNames(), "|"))
        pattern += c == '?' ? std::string("\\?") : std::string(1, c);
    return pattern;
}

}  // namespace

// Of two that match in the same place, Vim takes the later one.
std::string WriteVimSyntax() {
    std::string text =
        "\" Vim syntax file\n"
        "\" Language: scripts of Kinsort (*.ecs)\n"
        "\" Written by script_reference from the tables of the language; change those instead.\n\n"
        "if exists('b:current_syntax')\n  finish\nendif\n\n"
        "syntax case ignore\n"
        "syntax sync fromstart\n\n";
    text += VimMatch("ecsNumber", R"(\<\%(0x\x\+\|\d\+\)\>)");
    text += VimMatch("ecsOperator", R"([!=<>]=\|!\?\^\|[<>])");
    text += VimMatch("ecsLabel", R"(^\s*\zs\S.*:\ze\s*$)");
    text += VimMatch("ecsKeyword", R"(^\s*\zs)" + VimChoice(WordNames()) + R"(\ze\%(\s\|$\))");
    text +=
        VimMatch("ecsCommand", R"(^\s*\zs)" + VimChoice(NamesOf(Statements(), &StatementRow::keyword)) + R"(\ze\s*=)");
    text +=
        VimMatch("ecsOption", R"(^\s*\zs)" + VimChoice(NamesOf(OptionLines(), &OptionLineRow::name)) + R"(\ze\s*=)");
    text += VimMatch("ecsFunction",
                     R"(\%(=\s*\)\@<=)" + VimChoice(NamesOf(Functions(), &FunctionRow::name)) + R"(\ze\s*\%(,\|$\))");
    text += VimMatch("ecsFolder", R"(%\h\w*%)");
    text += VimMatch("ecsToken", R"(\C)" + VimChoice(TokenNames()));
    text += VimMatch("ecsComment", R"(^\s*\/\/.*)");
    text +=
        "syntax region ecsEnd start=/^\\s*EOF\\s*$/ end=/\\%$/\n\n"
        "highlight default link ecsNumber Number\n"
        "highlight default link ecsOperator Operator\n"
        "highlight default link ecsLabel Label\n"
        "highlight default link ecsKeyword Statement\n"
        "highlight default link ecsCommand Identifier\n"
        "highlight default link ecsOption PreProc\n"
        "highlight default link ecsFunction Function\n"
        "highlight default link ecsFolder Special\n"
        "highlight default link ecsToken Special\n"
        "highlight default link ecsComment Comment\n"
        "highlight default link ecsEnd Comment\n\n"
        "let b:current_syntax = 'ecs'\n";
    return text;
}

std::string WriteKateSyntax() {
    std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE language>
<!-- Written by script_reference from the tables of the language; change those instead. -->
<language name="Kinsort Script" section="Scripts" extensions="*.ecs" version="1" kateversion="5.62" casesensitive="0">
  <highlighting>
)";
    text += KateList("words", WordNames());
    text += KateList("commands", NamesOf(Statements(), &StatementRow::keyword));
    text += KateList("options", NamesOf(OptionLines(), &OptionLineRow::name));
    text += KateList("functions", NamesOf(Functions(), &FunctionRow::name));
    text += R"(    <contexts>
      <context name="Line" attribute="Text" lineEndContext="#stay">
        <RegExpr String="^\s*//.*$" attribute="Comment"/>
        <RegExpr String="^\s*EOF\s*$" insensitive="true" attribute="Comment" context="End"/>
        <RegExpr String="^\s*\S.*:\s*$" attribute="Label"/>
        <RegExpr String="^\s*var\s[^=]*=" insensitive="true" lookAhead="true" context="Declaration"/>
        <RegExpr String="^\s*(if|while|goto)\s" insensitive="true" lookAhead="true" context="Word"/>
        <RegExpr String="^[^=]+=" lookAhead="true" context="Key"/>
        <DetectSpaces/>
        <RegExpr String="\S" lookAhead="true" context="Word"/>
      </context>
      <context name="Word" attribute="Text" lineEndContext="#pop" fallthroughContext="Rest">
        <DetectSpaces/>
        <keyword String="words" attribute="Keyword" context="Rest"/>
      </context>
      <context name="Declaration" attribute="Text" lineEndContext="#pop">
        <keyword String="words" attribute="Keyword"/>
        <DetectChar char="=" attribute="Operator" context="Value"/>
      </context>
      <context name="Key" attribute="Text" lineEndContext="#pop">
        <keyword String="commands" attribute="Command"/>
        <keyword String="options" attribute="Option"/>
        <DetectChar char="=" attribute="Operator" context="Value"/>
      </context>
      <context name="Value" attribute="Text" lineEndContext="#pop#pop" fallthroughContext="Last">
        <DetectSpaces/>
        <keyword String="functions" attribute="Function" context="Last"/>
      </context>
      <context name="Rest" attribute="Text" lineEndContext="#pop#pop">
        <RegExpr String="[!=&lt;&gt;]=|!?\^|[&lt;&gt;]" attribute="Operator"/>
        <IncludeRules context="Filled in"/>
      </context>
      <context name="Last" attribute="Text" lineEndContext="#pop#pop#pop">
        <IncludeRules context="Filled in"/>
      </context>
      <context name="Filled in" attribute="Text" lineEndContext="#stay">
        <RegExpr String=")" +
            KateTokens() + R"(" insensitive="false" attribute="Token"/>
        <RegExpr String="%\w+%" attribute="Token"/>
        <RegExpr String="\b(0x[0-9A-F]+|[0-9]+)\b" insensitive="true" attribute="Number"/>
      </context>
      <context name="End" attribute="Comment" lineEndContext="#stay"/>
    </contexts>
    <itemDatas>
      <itemData name="Text" defStyleNum="dsNormal"/>
      <itemData name="Comment" defStyleNum="dsComment"/>
      <itemData name="Keyword" defStyleNum="dsControlFlow"/>
      <itemData name="Command" defStyleNum="dsBuiltIn"/>
      <itemData name="Option" defStyleNum="dsPreprocessor"/>
      <itemData name="Function" defStyleNum="dsFunction"/>
      <itemData name="Label" defStyleNum="dsOthers"/>
      <itemData name="Operator" defStyleNum="dsOperator"/>
      <itemData name="Token" defStyleNum="dsSpecialString"/>
      <itemData name="Number" defStyleNum="dsDecVal"/>
    </itemDatas>
  </highlighting>
  <general>
    <comments>
      <comment name="singleLine" start="//" position="afterwhitespace"/>
    </comments>
    <keywords casesensitive="0"/>
  </general>
</language>
)";
    return text;
}

}  // namespace kinsort
