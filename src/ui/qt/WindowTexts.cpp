#include "ui/qt/WindowTexts.h"

#include <array>

namespace kinsort {
namespace {

struct TextRow {
    WindowText text;
    const char16_t* japanese;
    const char16_t* english;
};

constexpr std::array kRows = {
    TextRow{WindowText::kOk, u"OK", u"OK"},
    TextRow{WindowText::kCancel, u"キャンセル", u"Cancel"},
    TextRow{WindowText::kAbort, u"中止(&A)", u"&Abort"},
    TextRow{WindowText::kRetry, u"再試行(&R)", u"&Retry"},
    TextRow{WindowText::kIgnore, u"無視(&I)", u"&Ignore"},
    TextRow{WindowText::kYes, u"はい(&Y)", u"&Yes"},
    TextRow{WindowText::kNo, u"いいえ(&N)", u"&No"},
    TextRow{WindowText::kTryAgain, u"再実行(&T)", u"&Try again"},
    TextRow{WindowText::kContinue, u"続行(&C)", u"&Continue"},
    TextRow{WindowText::kCopyList, u"コピー(&C)", u"&Copy"},
    TextRow{WindowText::kClose, u"閉じる(&C)", u"&Close"},
};

constexpr bool IsInOrder() {
    for (size_t i = 0; i < kRows.size(); ++i) {
        if (static_cast<size_t>(kRows[i].text) != i) return false;
    }
    return true;
}
static_assert(IsInOrder());

}  // namespace

QString WindowTexts::Say(WindowText text) const {
    const TextRow& row = kRows[static_cast<size_t>(text)];
    return QString::fromUtf16(language_ == WindowLanguage::kJapanese ? row.japanese : row.english);
}

WindowLanguage LanguageOfSuffix(std::u16string_view suffix) {
    return suffix.empty() || suffix == u".ja-JP" ? WindowLanguage::kJapanese : WindowLanguage::kEnglish;
}

}  // namespace kinsort
