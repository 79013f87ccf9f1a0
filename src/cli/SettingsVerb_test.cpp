#include <gmock/gmock.h>

#include "cli/CliFixture_test.h"
#include "cli/RegistryJson.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class SettingsVerbTest : public testing::Test {
  protected:
    // The exit code; what was printed and said is kept by the fixture of this one run.
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "settings");
        fixture_.terminal.output.clear();
        fixture_.terminal.messages.clear();
        return RunKinsort(fixture_.services, arguments);
    }
    std::string Output(const std::vector<std::string>& arguments) {
        EXPECT_EQ(Run(arguments), 0) << fixture_.terminal.messages;
        return fixture_.terminal.output;
    }

    CliFixture fixture_;
};

TEST_F(SettingsVerbTest, NamedSettingsAreCheckedAndReadBack) {
    fixture_.files.AddFile(u"Z:\\usr\\lib\\vel\\Lang\\Msg.en-US.txt");
    fixture_.environment["HOME"] = "/home/me";
    const struct {
        std::string name, typed, text;
        RegistryValue stored;
    } cases[] = {
        {"nls", "en-US", ".en-US", RegistryValue::OfString(u".en-US")},
        {"UserDir", "~/my vel", "/home/me/my vel", RegistryValue::OfString(u"Z:\\home\\me\\my vel")},
        {"UserDir", "file:///data%20x", "/data x", RegistryValue::OfString(u"Z:\\data x")},
        {"UserDir", "", "", RegistryValue::OfString(u"")},
        {"UserDirMode", "2", "2", RegistryValue::OfDword(2)},
        {"Software/TEV_Soft/Vel/Main001/Settings/LANGOUT", "1", "1", RegistryValue::OfDword(1)},
        {"Confirmation", "0", "0", RegistryValue::OfDword(0)},
        {"confiramation", "0x1", "1", RegistryValue::OfDword(1)},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name + " = " + one.typed);
        Output({"set", one.name, one.typed});
        EXPECT_EQ(Output({"get", one.name}), one.text + "\n");
        bool isStored = false;
        const std::vector<RegistryKey> keys = fixture_.registry.List(u"").value();
        for (const RegistryKey& key : keys) {
            for (const RegistryEntry& entry : key.entries)
                isStored |= entry.value == one.stored;
        }
        EXPECT_TRUE(isStored);
    }
    EXPECT_EQ(fixture_.settings.ReadCommandDword(kConfirmName), 1u);

    Output({"set", "NLS", ".fr-FR"});
    EXPECT_THAT(fixture_.terminal.messages, HasSubstr("/usr/lib/vel/Lang/Msg.fr-FR.txt"));
    Output({"unset", "NLS"});
    EXPECT_EQ(Output({"get", "NLS"}), ".ja-JP\n");
    EXPECT_EQ(fixture_.terminal.messages, "kinsort: this is the default; it is not set\n");
    EXPECT_THAT(Output({"list"}), HasSubstr("NLS = .ja-JP (default)\n    language of"));
    EXPECT_THAT(Output({"get", "UserDirMode", "--json"}),
                "{\"name\": \"UserDirMode\", \"key\": \"Software\\\\TEV_Soft\\\\Vel\\\\Main001\\\\Settings\", "
                "\"value_name\": \"UserDirMode\", \"is_set\": true, \"type\": \"dword\", \"value\": 2}\n");
}

TEST_F(SettingsVerbTest, OtherValuesAreNamedByPathAndKeepTheirType) {
    EXPECT_EQ(fixture_.settings.WriteCommandString(u"Kinsort000", u"Z:\\home"), 1);
    Output({"set", "Kinsort000", "Z:\\etc"});
    EXPECT_EQ(Output({"get", "kinsort000"}), "Z:\\etc\n");
    Output({"set", "My\\Key\\n", "--type=dword", "4294967295"});
    Output({"set", "My\\Key\\n", "7"});
    EXPECT_EQ(fixture_.registry.QueryValue(u"my\\key", u"N").value(), RegistryValue::OfDword(7));
    Output({"set", "my/key/b", "00fF", "--type", "binary"});
    EXPECT_EQ(Output({"get", "My/Key/B"}), "00ff\n");
    Output({"set", "my/key/t", "\xE6\x97\xA5 = 1"});
    EXPECT_EQ(Output({"list", "MY\\key"}),
              "My\\Key\\b = 00ff (binary)\nMy\\Key\\n = 7 (dword)\n"
              "My\\Key\\t = \xE6\x97\xA5 = 1 (string)\n");
    EXPECT_EQ(Output({"list", "my/key/"}), Output({"list", "MY\\key"}));
    EXPECT_EQ(Output({"export", "my/key"}), Output({"export", "my\\key"}));
}

TEST_F(SettingsVerbTest, SaysWhatIsWrong) {
    ASSERT_TRUE(fixture_.registry.SetValue(u"K", u"n", RegistryValue::OfDword(1)).ok());
    const struct {
        std::vector<std::string> arguments;
        int code;
        std::string message;
    } cases[] = {
        {{}, 2, "say what to do: get, set, unset, list, export or import"},
        {{"put"}, 2, "takes get, set, unset, list, export or import, not 'put'"},
        {{"get"}, 2, "get takes NAME"},
        {{"set", "NLS"}, 2, "set takes NAME VALUE"},
        {{"get", "Nope"}, 3, "Nope is not set; 'kinsort settings list' shows what is"},
        {{"get", "K\\"}, 2, "names no value"},
        {{"set", "Nope", "1"}, 2, "there is no setting 'Nope'"},
        {{"set", "NLS", "../x"}, 2, "'../x' is no language; write it like .ja-JP or .en-US"},
        {{"set", "NLS", "."}, 2, "'.' is no language"},
        {{"set", "UserDirMode", "3"}, 2, "UserDirMode takes 0, 1 or 2, not '3'"},
        {{"set", "LangOut", "yes"}, 2, "LangOut takes 0 or 1, not 'yes'"},
        {{"set", "LangOut", "1", "--type=string"}, 2, "the type of LangOut is fixed; leave --type out"},
        {{"set", "UserDir", "file://elsewhere/x"}, 2, "file://elsewhere/x: "},
        {{"set", "K\\n", "-1"}, 2, "there is no option '-1'"},
        {{"set", "--", "K\\n", "-1"}, 2, "a dword is a number from 0 to 4294967295, not '-1'; see --type"},
        {{"set", "K\\n", "4294967296"}, 2, "not '4294967296'"},
        {{"set", "K\\b", "0g", "--type=binary"}, 2, "pairs of hexadecimal digits, not '0g'"},
        {{"unset", "LangOut"}, 3, "LangOut is not set"},
        {{"list", "None"}, 3, "there is no key None"},
        {{"export", "None"}, 3, "there is no key None"},
        {{"import", "/none.json"}, 3, "/none.json: it does not exist"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Run(one.arguments), one.code);
        EXPECT_THAT(fixture_.terminal.messages, HasSubstr(one.message));
        EXPECT_EQ(fixture_.terminal.output, "");
    }
    fixture_.registry.failWrites = Status::Failure(StatusCode::kAccessDenied).At(u"Z:\\home\\me\\registry.db");
    EXPECT_EQ(Run({"set", "LangOut", "1"}), 3);
    EXPECT_THAT(fixture_.terminal.messages, HasSubstr("kinsort: /home/me/registry.db: permission denied"));
    fixture_.registry.failReads = Status::Failure(StatusCode::kTooNew).At(u"Z:\\home\\me\\registry.db");
    for (const std::string action : {"list", "export"}) {
        EXPECT_EQ(Run({action}), 3);
        EXPECT_THAT(fixture_.terminal.messages, HasSubstr("/home/me/registry.db: it was written by a later version"));
    }
}

TEST_F(SettingsVerbTest, ExportComesBackWhole) {
    const auto bytes = [](std::initializer_list<int> list) {
        std::vector<std::byte> data;
        for (const int one : list)
            data.push_back(static_cast<std::byte>(one));
        return data;
    };
    const std::pair<std::u16string, RegistryValue> values[] = {
        {u"", RegistryValue::OfString(u"the key's own")},
        {u"text", RegistryValue::OfString(u"日本 \"x\" \\ \t\n😀")},
        {u"half a character", RegistryValue::OfString(u"\xD800")},
        {u"without NUL", {kRegistryString, bytes({65, 0})}},
        {u"two NULs", {kRegistryString, bytes({65, 0, 0, 0, 66, 0, 0, 0})}},
        {u"empty text", {kRegistryString, {}}},
        {u"number", RegistryValue::OfDword(0xFFFFFFFF)},
        {u"short number", {kRegistryDword, bytes({1})}},
        {u"bytes", {kRegistryBinary, bytes({0, 255, 16})}},
        {u"expand", {2, bytes({65, 0, 0, 0})}},
        {u"many", {7, bytes({65, 0, 0, 0, 0, 0})}},
        {u"of another world", {0xFFFFFFFF, bytes({1, 2})}},
    };
    for (const auto& [name, value] : values)
        ASSERT_TRUE(fixture_.registry.SetValue(u"Software\\日本\\a/b", name, value).ok());
    ASSERT_TRUE(fixture_.registry.SetValue(u"", u"of\\the root", RegistryValue::OfDword(1)).ok());
    ASSERT_TRUE(fixture_.registry.CreateKey(u"Empty\\Key").ok());
    const std::vector<RegistryKey> before = fixture_.registry.List(u"").value();
    fixture_.terminal.files["/all.json"] = Output({"export"});
    fixture_.terminal.files["/part.json"] = Output({"export", "software\\日本"});
    ASSERT_TRUE(fixture_.registry.RemoveKey(u"").ok());
    Output({"import", "/part.json"});
    EXPECT_FALSE(fixture_.registry.HasKey(u"Empty").value());
    Output({"import", "/all.json"});
    EXPECT_EQ(fixture_.registry.List(u"").value(), before);

    // Nothing of a file that is wrong somewhere is taken over.
    const std::string head = R"({"kinsort_registry": 1, "keys": [{"path": "New", "values": [)"
                             R"({"name": "good", "type": "dword", "value": 1}, )";
    const std::pair<std::string, std::string> bad[] = {
        {"", "line 1: this is no JSON"},
        {"{\n\n\"a\": ", "line 3: this is no JSON"},
        {"[]", "this is no file that 'kinsort settings export' has written"},
        {R"({"kinsort_registry": 2, "keys": []})", "written by a later version"},
        {R"({"kinsort_registry": 1})", "keys: an array is needed here"},
        {R"({"kinsort_registry": 1, "keys": [{"path": 5, "values": []}]})", "keys[0].path: a text"},
        {R"({"kinsort_registry": 1, "keys": [7]})", "keys[0]: an object"},
        {head + "3]}]}", "keys[0].values[1]: an object"},
        {head + R"({"name": "x"}]}]})", "keys[0].values[1].type: \"string\""},
        {head + R"({"name": "x", "type": 4294967296, "hex": ""}]}]})", "keys[0].values[1].type: \"string\""},
        {head + R"({"name": "x", "type": "dword", "value": -1}]}]})", "keys[0].values[1].value: a number from 0"},
        {head + R"({"name": "x", "type": "string", "value": 1}]}]})", "keys[0].values[1].value: a text"},
        {head + R"({"name": "x", "type": "binary", "value": "00"}]}]})", "keys[0].values[1].hex: pairs"},
        {head + R"({"name": "x", "type": 3, "hex": "0"}]}]})", "keys[0].values[1].hex: pairs"},
        {head + R"({"name": "a\u0000", "type": 3, "hex": ""}]}]})", "is not possible or too long"},
    };
    for (const auto& [text, message] : bad) {
        fixture_.terminal.files["/bad.json"] = text;
        EXPECT_EQ(Run({"import", "/bad.json"}), 3);
        EXPECT_THAT(fixture_.terminal.messages, HasSubstr("kinsort: /bad.json: "));
        EXPECT_THAT(fixture_.terminal.messages, HasSubstr(message));
        EXPECT_FALSE(fixture_.registry.HasKey(u"New").value());
    }
}

}  // namespace
}  // namespace kinsort
