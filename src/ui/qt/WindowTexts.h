// What the windows of this folder say by themselves: their buttons and labels. Everything else comes from the dialog's
// translation file and the message files, which a host may bring along and which know nothing of these windows.
//
// To add a text: a row in WindowTexts.cpp, in both languages.
#pragma once

#include <QString>
#include <cstdint>
#include <string_view>

namespace kinsort {

enum class WindowLanguage : uint8_t { kJapanese, kEnglish };

enum class WindowText : uint8_t {
    kOk,
    kCancel,
    kAbort,
    kRetry,
    kIgnore,
    kYes,
    kNo,
    kTryAgain,
    kContinue,
    kCopyList,
    kClose,
};

class WindowTexts {
  public:
    explicit WindowTexts(WindowLanguage language) : language_(language) {}

    WindowLanguage Language() const { return language_; }
    QString Say(WindowText text) const;

  private:
    WindowLanguage language_;
};

// ".ja-JP", the default, is Japanese; with any other suffix the windows speak English.
WindowLanguage LanguageOfSuffix(std::u16string_view suffix);

}  // namespace kinsort
