#include "framework/TypedPath.h"

#include <gtest/gtest.h>

#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {
namespace {

using namespace std::string_literals;

TEST(TypedPath, EveryFormIsUnderstood) {
    struct Case {
        std::string typed;
        std::u16string inner;
    };
    const Case cases[] = {
        {"/home/me/a b", u"Z:\\home\\me\\a b"},
        {"/", u"Z:\\"},
        {"~", u"Z:\\home\\me"},
        {"~/notes/", u"Z:\\home\\me\\notes\\"},
        {"~you/x", u"~you\\x"},
        {"file:///home/%E3%81%82%20%25", u"Z:\\home\\\u3042 %"},
        {"FILE://LocalHost/x", u"Z:\\x"},
        {"file:/x", u"Z:\\x"},
        {"file:///a%FFb%5C",
         u"Z:\\a\xDCFF"
         u"b\uF05C"},
        {"file:", u"file:"},
        {"files/x", u"files\\x"},
        {"Z:\\home", u"Z:\\home"},
        {"\\\\?\\Z:\\home", u"\\\\?\\Z:\\home"},
        {"\\\\nas\\share\\x", u"\\\\nas\\share\\x"},
        {"a\\b", u"a\uF05Cb"},
        {"notes/../x", u"notes\\..\\x"},
    };
    const std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    for (const Case& c : cases) {
        const TypedPath path = InnerPathFromTyped(c.typed, "/home/me", *codec);
        EXPECT_TRUE(path.ok()) << c.typed;
        EXPECT_EQ(path.inner, c.inner) << c.typed;
    }
}

TEST(TypedPath, EveryProblemIsNamed) {
    struct Case {
        TypedPathProblem problem;
        std::string_view text;
        std::vector<std::string> typed;
    };
    const Case cases[] = {
        {TypedPathProblem::kEmpty, "The path is empty. Give a file or folder.", {""}},
        {TypedPathProblem::kNoHome, "The home folder is not known. Set HOME, or write the path out.", {"~/x"}},
        {TypedPathProblem::kForeignHost,
         "The URI names another computer. Mount its folder and give the path here.",
         {"file://nas/x", "file://localhos/x"}},
        {TypedPathProblem::kNotAbsolute,
         "A file URI needs an absolute path. Write file:///folder/name.",
         {"file:x", "file://"}},
        {TypedPathProblem::kBadPercent,
         "A '%' in the URI is not followed by two hexadecimal digits. Write %25 for the sign itself.",
         {"file:///a%2", "file:///a%g0"}},
        {TypedPathProblem::kForbiddenByte,
         "No file name can hold this character (%2F, %00). Check the URI.",
         {"file:///a%2Fb", "file:///a%00", "/a\0b"s}},
        {TypedPathProblem::kHasFragment,
         "A file URI has no '?' or '#' part. Write %3F or %23 for the sign itself.",
         {"file:///a#b"}},
    };
    const std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    for (const auto& [problem, text, typed] : cases) {
        for (const std::string& one : typed) {
            const TypedPath path = InnerPathFromTyped(one, "", *codec);
            EXPECT_EQ(path.problem, problem) << one;
            EXPECT_EQ(path.inner, u"") << one;
        }
        EXPECT_EQ(DescribeProblem(problem), text);
    }
}

}  // namespace
}  // namespace kinsort
