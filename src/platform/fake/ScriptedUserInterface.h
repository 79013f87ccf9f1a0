// A user whose answers a test has written down. Every question is kept; one that nobody foresaw fails the test that
// looks at `unexpected`, and is answered by leaving things as they are.
#pragma once

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/UserInterface.h"

namespace kinsort {

class ScriptedUserInterface : public UserInterface {
  public:
    // Answers, taken from the front. A box with nothing but an OK button needs none.
    std::deque<MessageAnswer> messageAnswers;
    std::deque<std::optional<size_t>> choices;
    std::deque<std::optional<std::u16string>> folders;
    std::u16string clipboard;
    std::set<ModifierKey> keysDown;
    WindowHandle mainWindow = kNoWindow;
    std::map<WindowHandle, ScreenRectangle> windowRectangles;
    std::optional<ScreenRectangle> workArea;  // of every window
    std::vector<ScreenRectangle> screens;

    // What was asked, in order.
    std::vector<MessageRequest> messages;
    std::vector<ChoiceRequest> choiceRequests;
    std::vector<FolderRequest> folderRequests;
    std::vector<WindowHandle> broughtToFront;
    int unexpected = 0;  // questions without an answer

    MessageAnswer ShowMessage(const MessageRequest& request) override {
        messages.push_back(request);
        if (request.buttons == MessageButtons::kOk) return MessageAnswer::kOk;
        if (request.buttons == MessageButtons::kYesNo) return Take(messageAnswers, MessageAnswer::kNo);
        if (request.buttons == MessageButtons::kAbortRetryIgnore) return Take(messageAnswers, MessageAnswer::kAbort);
        return Take(messageAnswers, MessageAnswer::kCancel);
    }
    std::optional<size_t> ChooseOne(const ChoiceRequest& request) override {
        choiceRequests.push_back(request);
        return Take(choices, std::optional<size_t>());
    }
    std::optional<std::u16string> BrowseForFolder(const FolderRequest& request) override {
        folderRequests.push_back(request);
        return Take(folders, std::optional<std::u16string>());
    }
    std::u16string GetClipboardText() override { return clipboard; }
    void SetClipboardText(std::u16string_view text) override { clipboard = text; }
    bool IsKeyDown(ModifierKey key) override { return keysDown.contains(key); }
    WindowHandle MainWindow() override { return mainWindow; }
    void BringToForeground(WindowHandle window) override { broughtToFront.push_back(window); }
    std::optional<ScreenRectangle> WindowRectangle(WindowHandle window) override {
        const auto found = windowRectangles.find(window);
        return found == windowRectangles.end() ? std::nullopt : std::optional(found->second);
    }
    std::optional<ScreenRectangle> WorkArea(WindowHandle) override { return workArea; }
    std::vector<ScreenRectangle> Screens() override { return screens; }

  private:
    template <typename T>
    T Take(std::deque<T>& answers, T otherwise) {
        if (answers.empty()) {
            ++unexpected;
            return otherwise;
        }
        T answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

}  // namespace kinsort
