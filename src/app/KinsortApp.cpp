#include "app/KinsortApp.h"

#include <algorithm>
#include <array>
#include <memory>

#include "framework/Paths.h"
#include "framework/TypedPath.h"
#include "text/AsciiCase.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr int32_t kShowOwnedByHost = 3;

// The arguments that are no folder. To add one: a row, and a line in the help page.
struct ArgumentRow {
    std::u16string_view name;
    int mode;
    bool isTwoStep;
};
constexpr std::array<ArgumentRow, 4> kArgumentRows = {{
    {u"/c", 0, false},
    {u"/m", 1, false},
    {u"/2c", 0, true},
    {u"/2m", 1, true},
}};

}  // namespace

bool CKinsortApp::InitInstance() {
    const KinsortDlgServices& services = m_services.dialog;
    // Made by the first of several instances, which never stops a further one; without a runtime folder there is none.
    auto marker = m_services.memory.OpenSharedMutex(u"ExCommand." + GetFileNamePart(services.folders.GetProgramFile()));
    ReadHandOff();
    services.messages.GetMessageFilePath();

    CKinsortDlg dialog(m_services.view, services,
                       services.handOff.ShowMode == kShowOwnedByHost ? FindHost() : kNoWindow);
    ApplyCommandLine(dialog);
    dialog.DoModal();

    if (services.handOff.ReturnFocus == 1) {
        if (const WindowHandle host = FindHost(); host != kNoWindow) services.ui.BringToForeground(host);
    }
    services.operation.OfferUndo();  // now that it holds nobody up
    return false;
}

void CKinsortApp::ReadHandOff() {
    const KinsortDlgServices& services = m_services.dialog;
    const auto show = [&services](const std::u16string& text) {
        services.ui.ShowMessage({.text = text, .title = std::u16string(kProgramTitle), .icon = MessageIcon::kWarning});
    };
    ReadHostHandOff(m_services.environment, m_services.memory, show, services.handOff);
}

WindowHandle CKinsortApp::FindHost() {
    return m_services.dialog.windows.FindTopLevel(kHostWindowClass);
}

void CKinsortApp::ApplyCommandLine(CKinsortDlg& dialog) {
    for (const std::string& argument : m_arguments) {
        const std::u16string text = FromUtf8(argument);
        const auto row = std::find_if(kArgumentRows.begin(), kArgumentRows.end(),
                                      [&text](const ArgumentRow& each) { return EqualNoCase(each.name, text); });
        if (row == kArgumentRows.end()) {
            const TypedPath folder = InnerPathFromTyped(argument, m_services.homeFolder, m_services.codec);
            dialog.m_strFolder = (folder.ok() ? folder.inner : text) + u"\\";
            continue;
        }
        dialog.m_nMode = row->mode;
        if (row->isTwoStep) dialog.m_bTwoStep = 1;
    }
}

}  // namespace kinsort
