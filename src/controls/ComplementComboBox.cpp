#include "controls/ComplementComboBox.h"

#include "controls/PathEllipsis.h"
#include "framework/Paths.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kHome = u"~";

struct ListingRequest {
    std::u16string folder;   // up to and including its separator; empty for the current folder
    std::u16string pattern;  // of the entries, with its folder
    bool foldersOnly;
};

// One typed character asks for the names that begin with it, more ask for those that hold them somewhere.
ListingRequest RequestFor(const std::u16string& text, bool foldersOnly) {
    const size_t name = text.find_last_of(u"\\/") + 1;
    const std::u16string folder = text.substr(0, name);
    const std::u16string typed = text.substr(name);
    return {folder, folder + (typed.size() < 2 ? u"" : u"*") + typed + u"*", foldersOnly};
}

// Gives up, with what it has, as soon as `isOver`.
std::vector<std::u16string> ListCandidates(FileSystem& files, const ListingRequest& request,
                                           const std::function<bool()>& isOver) {
    std::vector<std::u16string> candidates;
    auto search = FindFirst(files, request.pattern);
    if (!search.ok()) return candidates;
    for (FindData entry; !isOver() && (*search)->Next(entry);) {
        if (entry.name == u"." || entry.name == u"..") continue;
        const bool isFolder = (entry.attributes & kAttributeDirectory) != 0;
        if (!isFolder && request.foldersOnly) continue;
        candidates.push_back(request.folder + entry.name + (isFolder ? u"\\" : u""));
        if (candidates.size() > CComplementComboBox::kMaxCandidates) break;
    }
    SortNoCase(candidates);
    return candidates;
}

}  // namespace

CComplementComboBox::CComplementComboBox(HistoryComboView& view, FileSystem& files, const FolderText& texts)
    : view_(view),
      files_(files),
      texts_(texts),
      listingNumber_(std::make_shared<std::atomic<uint64_t>>(0)),
      workers_([this](std::function<void()> task) { view_.Post(std::move(task)); }, kMaxListings) {}

CComplementComboBox::~CComplementComboBox() = default;

std::u16string CComplementComboBox::GetText() const {
    return texts_.ToInner(view_.Text());
}

void CComplementComboBox::SetText(std::u16string_view text) {
    if (GetText() != text) view_.SetText(texts_.ToShown(text));
}

void CComplementComboBox::PutText(std::u16string_view text) {
    SetText(text);
    const size_t end = view_.Text().size();
    view_.SetSelection({end, end});
}

bool CComplementComboBox::OnKey(const BoxKeyPress& press) {
    if (press.alt) return false;
    const bool completes = press.ctrl && (press.key == BoxKey::kSpace || press.key == BoxKey::kJ);
    if (completes || press.key == BoxKey::kDown) {
        CompleteOrStep();
        return true;
    }
    return view_.IsListOpen() ? OnKeyInOpenList(press) : OnKeyInClosedList(press);
}

bool CComplementComboBox::OnKeyInOpenList(const BoxKeyPress& press) {
    switch (press.key) {
        case BoxKey::kTab:
            if (press.ctrl) return false;
            StepList(!press.shift);
            return true;
        case BoxKey::kUp:
            StepList(false);
            return true;
        case BoxKey::kEnter:
            if (const auto selected = view_.SelectedItem(); selected && *selected < m_candidates.size()) {
                m_strChosen = m_candidates[*selected];
            }
            view_.CloseList();
            return true;
        case BoxKey::kEscape:
            view_.CloseList();
            return true;
        default:
            return false;
    }
}

bool CComplementComboBox::OnKeyInClosedList(const BoxKeyPress& press) {
    const auto is = [&](BoxKey key) { return press.key == key; };
    if (is(BoxKey::kPageUp) || (press.ctrl && (is(BoxKey::kBackspace) || is(BoxKey::kK)))) {
        CutLastPart();
    } else if (is(BoxKey::kPageDown) || (press.ctrl && is(BoxKey::kL))) {
        DeleteToEnd();
    } else if (is(BoxKey::kTab) && m_bTabComplete && !press.shift && !press.ctrl) {
        CompleteOrStep();
    } else if (is(BoxKey::kUp)) {
        FillList();
        view_.OpenList();
    } else if (press.ctrl && is(BoxKey::kH)) {
        AskToClearHistory();
    } else {
        if (is(BoxKey::kEnter) && m_hNotifyWnd != kNoWindow) view_.PostCommand(m_hNotifyWnd, m_nNotifyId);
        return false;
    }
    return true;
}

void CComplementComboBox::OnDoubleClick() {
    Complete();
}

void CComplementComboBox::OnDropDown() {
    if (view_.ItemCount() == 0) FillList();
    m_strChosen = GetText();
}

void CComplementComboBox::OnCloseUp() {
    if (!m_strChosen.empty()) PutText(m_strChosen);
}

void CComplementComboBox::OnSelChange() {
    const std::optional<size_t> selected = view_.SelectedItem();
    if (selected && *selected < m_candidates.size()) PutText(m_candidates[*selected]);
}

void CComplementComboBox::OnEdit() {
    EndListing();
    if (!view_.IsListOpen()) return;
    m_strChosen.clear();  // nothing is to come back over what was typed
    view_.CloseList();
}

void CComplementComboBox::OnKillFocus() {
    EndListing();
}

void CComplementComboBox::OnDropFiles(std::u16string_view path) {
    std::u16string dropped = RemoveLongPathPrefix(path);
    if (m_bFoldersOnly && !FolderExists(files_, dropped)) dropped = GetDirectoryPart(dropped);
    PutText(dropped);
    m_strDropDir = std::move(dropped);
}

void CComplementComboBox::CompleteOrStep() {
    if (view_.IsListOpen()) {
        StepList(true);
        return;
    }
    const std::u16string text = GetText();
    if (!m_strBaseDir.empty() && !HasFullForm(text))
        PutText(GetFullPath(files_, AddTrailingSeparator(m_strBaseDir) + text));
    Complete();
}

void CComplementComboBox::StepList(bool isForward) {
    const size_t count = view_.ItemCount();
    if (count == 0) return;
    const std::optional<size_t> selected = view_.SelectedItem();
    if (isForward) {
        view_.SelectItem(selected && *selected + 1 < count ? *selected + 1 : 0);
    } else {
        view_.SelectItem(selected && *selected > 0 ? *selected - 1 : count - 1);
    }
}

void CComplementComboBox::Complete() {
    m_candidates.clear();
    view_.ResetItems();
    if (const std::u16string root = CompletedRoot(); !root.empty()) {
        EndListing();
        PutText(root);
        return;
    }
    const std::u16string text = GetText();
    if (text == awaited_) return;
    EndListing();
    if (text.size() >= 2) StartListing(text);
}

// What a text becomes that is the beginning of a root; empty for any other.
std::u16string CComplementComboBox::CompletedRoot() const {
    const std::u16string text = GetText();
    const bool isHome = view_.Text() == kHome && HasFullForm(text);
    if (isHome || (text.size() == 2 && BeginsWithDrive(text))) return AddTrailingSeparator(text);
    if (text == u"\\") return u"\\\\";
    if (text.size() == 1 && IsDriveLetter(text[0])) return text + u":\\";
    return {};
}

void CComplementComboBox::StartListing(const std::u16string& text) {
    std::u16string full = text;
    if (!m_strDropDir.empty() && !HasFullForm(text)) {
        full = AddTrailingSeparator(m_strDropDir) + (text.starts_with(u'\\') ? text.substr(1) : text);
    }
    const uint64_t number = *listingNumber_;
    const auto list = [this, number, &files = files_, request = RequestFor(full, m_bFoldersOnly),
                       latest = listingNumber_](const WorkerThreads::Link& link) {
        const auto isOver = [&] { return link.IsStopped() || *latest != number; };
        // Shared, because a task may be copied on its way.
        auto candidates = std::make_shared<std::vector<std::u16string>>(ListCandidates(files, request, isOver));
        link.Post([this, number, candidates] { OnListed(number, std::move(*candidates)); });
    };
    if (!workers_.Start(list)) return;
    awaited_ = text;
    view_.ShowBusy(true);
}

void CComplementComboBox::OnListed(uint64_t number, std::vector<std::u16string> candidates) {
    if (number != *listingNumber_) return;
    const std::optional<std::u16string> asked = awaited_;
    EndListing();
    if (GetText() != asked) return;
    ShowItems(std::move(candidates));
    ShowCompletion();
}

// Nobody waits for an answer any more.
void CComplementComboBox::EndListing() {
    ++*listingNumber_;
    if (std::exchange(awaited_, std::nullopt)) view_.ShowBusy(false);
}

void CComplementComboBox::ShowCompletion() {
    if (m_candidates.size() == 1) {
        PutText(m_candidates[0]);
    } else if (m_candidates.size() > 1) {
        view_.OpenList();
    }
}

void CComplementComboBox::FillList() {
    ShowItems(m_listItems);
}

void CComplementComboBox::ShowItems(std::vector<std::u16string> fullTexts) {
    const int room = view_.ClientWidth();
    const auto widthOf = [this](std::u16string_view text) { return view_.TextWidth(text); };
    std::vector<std::u16string> shown;
    shown.reserve(fullTexts.size());
    for (const std::u16string& text : fullTexts)
        shown.push_back(ShortenPath(texts_.ToShown(text), room, widthOf));
    m_candidates = std::move(fullTexts);
    view_.ResetItems();
    view_.AddItems(shown);
}

void CComplementComboBox::DeleteToEnd() {
    const std::u16string text = view_.Text();
    const size_t end = std::min(view_.Selection().end, text.size());
    view_.SetText(text.substr(0, end));
    view_.SetSelection({end, end});
}

void CComplementComboBox::CutLastPart() {
    const std::u16string text = GetText();
    std::u16string cut(text, 0, text.find_last_of(u"\\/") + 1);
    if (cut == text && !cut.empty()) cut.pop_back();
    if (text == texts_.NativeRoot()) cut.clear();  // what people see there is one separator
    PutText(cut);
}

}  // namespace kinsort
