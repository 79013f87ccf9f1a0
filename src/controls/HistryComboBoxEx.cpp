#include "controls/HistryComboBoxEx.h"

#include <algorithm>
#include <utility>

#include "framework/MessageNumbers.h"

namespace kinsort {

namespace {

constexpr size_t kNumberDigits = 3;

}  // namespace

CHistryComboBoxEx::CHistryComboBoxEx(HistoryComboView& view, FileSystem& files, const FolderText& texts,
                                     Settings& settings, Messages& messages, UserInterface& ui)
    : CComplementComboBox(view, files, texts), settings_(settings), messages_(messages), ui_(ui) {}

void CHistryComboBoxEx::SetHistory(std::u16string valuePrefix, size_t maxEntries) {
    valuePrefix_ = std::move(valuePrefix);
    m_history.resize(maxEntries);
}

void CHistryComboBoxEx::PostLoadHistory() {
    PostToSelf([this] { OnLoadHistory(); });
}

void CHistryComboBoxEx::OnLoadHistory() {
    for (size_t i = 0; i < m_history.size(); ++i)
        m_history[i] = settings_.ReadCommandString(ValueName(i));
    RebuildListItems();
}

void CHistryComboBoxEx::OnClearHistory() {
    std::fill(m_history.begin(), m_history.end(), std::u16string());
    RebuildListItems();
    View().ResetItems();  // they may be the history
    WriteHistory();
}

void CHistryComboBoxEx::OnDestroy() {
    if (!m_bSaveOnDestroy) return;
    AddToHistory();
    WriteHistory();
}

void CHistryComboBoxEx::AskToClearHistory() {
    MessageRequest request;
    request.text = messages_.GetMessageText(kMsgClearHistory) + messages_.GetMessageText(kMsgAreYouSure);
    request.buttons = MessageButtons::kYesNo;
    request.icon = MessageIcon::kQuestion;
    request.owner = ui_.MainWindow();
    if (ui_.ShowMessage(request) == MessageAnswer::kYes) PostToSelf([this] { OnClearHistory(); });
}

void CHistryComboBoxEx::AddToHistory() {
    std::u16string text = GetText();
    if (text.empty() || m_history.empty()) return;
    auto place = std::find(m_history.begin(), m_history.end(), text);
    if (place == m_history.end()) --place;  // the oldest makes room
    std::rotate(m_history.begin(), place, place + 1);
    m_history.front() = std::move(text);
    RebuildListItems();
}

void CHistryComboBoxEx::RebuildListItems() {
    m_listItems.clear();
    std::copy_if(m_history.begin(), m_history.end(), std::back_inserter(m_listItems),
                 [](const std::u16string& text) { return !text.empty(); });
}

std::u16string CHistryComboBoxEx::ValueName(size_t index) const {
    std::u16string digits;
    for (; index > 0 || digits.size() < kNumberDigits; index /= 10)
        digits.insert(digits.begin(), static_cast<char16_t>(u'0' + index % 10));
    return valuePrefix_ + digits;
}

// A registry that cannot be written is no reason to bother anybody.
void CHistryComboBoxEx::WriteHistory() {
    std::vector<std::pair<std::u16string, std::u16string>> values;
    for (size_t i = 0; i < m_history.size(); ++i)
        values.emplace_back(ValueName(i), m_history[i]);
    (void)settings_.WriteCommandStrings(values);
}

}  // namespace kinsort
