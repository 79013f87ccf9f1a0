#include "cli/BatchReport.h"

#include <nlohmann/json.hpp>
#include <set>

#include <gmock/gmock.h>

#include "cli/CliFixture_test.h"

namespace kinsort {
namespace {

using nlohmann::json;

ItemReport Failed(ItemReason reason, Status status = {}) {
    return {.item = 0,
            .source = u"Z:\\s\\a",
            .target = {},
            .outcome = ItemOutcome::kFailed,
            .reason = reason,
            .status = std::move(status)};
}

TEST(Texts, EveryFailureSaysWhatHappenedAndHasItsOwnKeyword) {
    std::set<std::string_view> keywords;
    for (int i = 0; i <= static_cast<int>(StatusCode::kOther); ++i) {
        const auto code = static_cast<StatusCode>(i);
        EXPECT_TRUE(keywords.insert(StatusKeyword(code)).second) << StatusKeyword(code);
        if (code != StatusCode::kOk) {
            EXPECT_GT(StatusText(Status::Failure(code)).size(), 10U);
        }
    }
    for (int i = 0; i <= static_cast<int>(ItemReason::kCancelled); ++i) {
        const ItemReport report = Failed(static_cast<ItemReason>(i));
        if (report.reason == ItemReason::kSystem) continue;
        EXPECT_TRUE(keywords.insert(ReasonKeyword(report)).second) << ReasonKeyword(report);
        EXPECT_NE(ReasonText(report), "");
    }
}

TEST(Texts, ExactWords) {
    EXPECT_EQ(ReasonText(Failed(ItemReason::kSystem, Status::Failure(StatusCode::kNoSpace, 28, u"x"))),
              "no space left on the volume; free some and try again");
    EXPECT_EQ(ReasonKeyword(Failed(ItemReason::kSystem, Status::Failure(StatusCode::kNoSpace))), "no-space");
    EXPECT_EQ(ReasonText(Failed(ItemReason::kLastCopy)), "it is the last copy there is, so it stays");
    EXPECT_EQ(StatusText(Status::Failure(StatusCode::kOther, 95, u"Not \x1B[1m supported")),
              "the system says: Not \\x1b[1m supported");
    EXPECT_EQ(StatusText(Status::Failure(StatusCode::kOther, 95)), "it failed for an unknown reason (95)");
    EXPECT_EQ(DoneText(BatchAction::kUndo, 1), "Took back 1 item");
    EXPECT_EQ(DoneText(BatchAction::kMove, 0), "Moved 0 items");
    EXPECT_EQ(ShownLines("a\x07\nb\n"), "a\\x07\nb\n");
}

BatchReport Example() {
    BatchReport report;
    report.result.id = 7;
    report.result.done = 2;
    report.result.failed = 1;
    report.result.skipped = 1;
    report.result.reports = {
        Failed(ItemReason::kSystem, Status::Failure(StatusCode::kAccessDenied).At(u"Z:\\d\\x\xDCFF")),
        {.item = 1,
         .source = u"Z:\\s\\b\xDCFF",
         .target = u"Z:\\d\\b",
         .outcome = ItemOutcome::kSkipped,
         .reason = ItemReason::kConflictSkipped,
         .status = {}}};
    report.result.warnings = {BatchWarning::kAttributesLost};
    report.withoutCandidate = {u"Z:\\s\\\uF01B[zzz"};
    return report;
}

TEST(BatchReport, TellsPeople) {
    CliFixture fixture;
    CliContext context(fixture.services);
    PrintReport(context, Example());
    (void)context.console.Flush();
    EXPECT_EQ(fixture.terminal.messages,
              "kinsort: /s/a: not moved: permission denied; check the rights of the file and of the folders it leaves "
              "and enters (/d/x\\xff)\n"
              "kinsort: /s/b\\xff: skipped: the name is taken in the target folder; choose --on-conflict=replace or "
              "keep-both\n"
              "kinsort: note: Some user attributes could not be kept: the target volume does not hold them.\n");
    EXPECT_EQ(fixture.terminal.output,
              "Moved 2 items, 1 skipped, 1 failed.\n"
              "1 item without a similar folder, left in place:\n"
              "  /s/\\x1b[zzz\n"
              "Take it back with: kinsort undo 7\n");
}

TEST(BatchReport, TellsPrograms) {
    CliFixture fixture;
    CliContext context(fixture.services);
    BatchReport report = Example();
    report.missing = {{"gone", "/s/gone", Status::Failure(StatusCode::kNotFound)}};
    JsonWriter writer(context.console);
    WriteReport(writer, context, report);
    writer.Finish();
    (void)context.console.Flush();
    EXPECT_EQ(fixture.terminal.messages, "");
    const json parsed = json::parse(fixture.terminal.output);
    EXPECT_EQ(parsed["batch"], 7);
    EXPECT_EQ(parsed["action"], "move");
    EXPECT_EQ(parsed["done"], 2);
    EXPECT_EQ(parsed["failed"], 2) << "the missing one counts";
    EXPECT_EQ(parsed["no_candidate"], 1);
    EXPECT_EQ(parsed["cancelled"], false);
    EXPECT_TRUE(parsed["error"].is_null());
    EXPECT_EQ(parsed["warnings"][0], "Some user attributes could not be kept: the target volume does not hold them.");
    ASSERT_EQ(parsed["items"].size(), 4U);
    const json& skipped = parsed["items"][1];
    EXPECT_EQ(skipped["item_uri"], "file:///s/b%FF");
    EXPECT_EQ(skipped["target"], "/d/b");
    EXPECT_EQ(skipped["outcome"], "skipped");
    EXPECT_EQ(skipped["reason"], "conflict-skipped");
    EXPECT_TRUE(parsed["items"][0]["target"].is_null());
    EXPECT_EQ(parsed["items"][2]["item"], "/s/\x1B[zzz");
    EXPECT_EQ(parsed["items"][3]["reason"], "not-found");
}

TEST(BatchReport, NamesTheBatchThatCouldNotBeTouched) {
    const std::pair<StatusCode, std::string> cases[] = {
        {StatusCode::kNotFound, "there is no such batch; 'kinsort history' lists them"},
        {StatusCode::kInvalid, "this cannot be done with it now; 'kinsort history' shows its state"},
        {StatusCode::kLocked, "another process is working on it; wait until that is done"},
        {StatusCode::kNoSpace, "the undo journal in /j: no space left on the volume; free some and try again"},
    };
    for (const auto& [code, text] : cases) {
        CliFixture fixture;
        CliContext context(fixture.services);
        BatchReport report;
        report.action = BatchAction::kUndo;
        report.subject = 12;
        report.journalFolder = "/j";
        report.result.status = Status::Failure(code);
        PrintReport(context, report);
        EXPECT_EQ(fixture.terminal.messages, "kinsort: batch 12: " + text + "\n");
        (void)context.console.Flush();
        EXPECT_EQ(fixture.terminal.output, "");
        EXPECT_EQ(ExitCodeOf(report), ExitCode::kNothing);
    }
}

TEST(BatchReport, ExitCodes) {
    const auto codeOf = [](auto change) {
        BatchReport report;
        report.result.done = 1;
        change(report);
        return static_cast<int>(ExitCodeOf(report));
    };
    EXPECT_EQ(codeOf([](BatchReport&) {}), 0);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.result.skipped = 1; }), 0) << "skipping was chosen";
    EXPECT_EQ(codeOf([](BatchReport& r) { r.result.reports = {Example().result.reports[1]}; }), 0);
    EXPECT_EQ(codeOf([](BatchReport& r) {
                  r.result.reports = {Example().result.reports[1]};
                  r.result.reports[0].reason = ItemReason::kSpecialFile;
              }),
              1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.unanswered = 1; }), 1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.result.failed = 1; }), 1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.result.cancelled = true; }), 1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.withoutCandidate = {u"a"}; }), 1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.missing.emplace_back(); }), 1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.result.status = Status::Failure(StatusCode::kIo); }), 1);
    EXPECT_EQ(codeOf([](BatchReport& r) { r.result.done = 0; }), 3);
}

TEST(JsonWriter, EveryByteStringIsWellFormedAndExactWhereItCanBe) {
    CliFixture fixture;
    CliContext context(fixture.services);
    JsonWriter writer(context.console);
    writer.BeginArray();
    std::string path = "/";
    for (int byte = 1; byte < 128; ++byte)
        path += static_cast<char>(byte);
    path += "あ\U0001F600";
    for (const std::string& one : {path, std::string("/\xFF\xED\xA0\x80"), std::string("/\uFFFD")}) {
        writer.BeginObject();
        writer.Path("p", one);
        writer.EndObject();
    }
    writer.BeginArray();
    writer.EndArray();
    writer.BeginObject();
    writer.Number("most", 18446744073709551615U);
    writer.Null("nothing");
    writer.EndObject();
    writer.EndArray();
    writer.Finish();
    (void)context.console.Flush();
    const json parsed = json::parse(fixture.terminal.output);
    EXPECT_EQ(parsed[0], json({{"p", path}}));
    EXPECT_EQ(parsed[1]["p_uri"], "file:///%FF%ED%A0%80");
    EXPECT_EQ(parsed[2], json({{"p", "/\uFFFD"}})) << "a name may hold U+FFFD itself";
    EXPECT_EQ(parsed[3], json::array());
    EXPECT_EQ(parsed[4], json({{"most", 18446744073709551615U}, {"nothing", nullptr}}));
}

}  // namespace
}  // namespace kinsort
