// Kinsort in the menus of the desktop and its file managers: which files that takes, where they go, and how a shared
// one is changed. The files themselves are templates in the "desktop" folder of the host.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kinsort {

// Whose folder a path counts from.
enum class UserPlace : uint8_t { kData, kConfig };  // $XDG_DATA_HOME, $XDG_CONFIG_HOME

// How the path of a program is written.
enum class ProgramQuoting : uint8_t {
    kNone,          // it does not occur
    kDesktopEntry,  // Exec= of a desktop entry: double quotes, "%" doubled
    kShell,         // single quotes
    kShellInXml,    // the same, "%" doubled, and then escaped
};

struct IntegrationFile {
    std::string_view name;     // of the integration, as people say it
    std::string_view program;  // integrated by default when this program is installed; empty: always
    std::string_view source;   // template
    UserPlace place;
    std::string_view path;  // below the place; one that ends in "/" is a folder for a file named in two languages
    ProgramQuoting quoting;
    uint32_t mode;
    std::string_view selection;  // value of @SELECTION@
    bool isShared = false;       // others write to it too: our part is merged into it
};

// To add one: its rows, its template in desktop/templates, a line in desktop/CMakeLists.txt.
inline constexpr std::array<IntegrationFile, 7> kIntegrationFiles = {{
    {"menu", "", "kinsort.desktop", UserPlace::kData, "applications/kinsort.desktop", ProgramQuoting::kDesktopEntry,
     0644, ""},
    {"menu", "", "kinsort.svg", UserPlace::kData, "icons/hicolor/scalable/apps/kinsort.svg", ProgramQuoting::kNone,
     0644, ""},
    {"kde", "dolphin", "servicemenu.desktop", UserPlace::kData, "kio/servicemenus/kinsort.desktop",
     ProgramQuoting::kDesktopEntry, 0755, ""},
    {"nemo", "nemo", "kinsort.nemo_action", UserPlace::kData, "nemo/actions/kinsort.nemo_action",
     ProgramQuoting::kShell, 0644, ""},
    {"nautilus", "nautilus", "script.sh", UserPlace::kData, "nautilus/scripts/", ProgramQuoting::kShell, 0755,
     "NAUTILUS_SCRIPT_SELECTED_URIS"},
    {"caja", "caja", "script.sh", UserPlace::kConfig, "caja/scripts/", ProgramQuoting::kShell, 0755,
     "CAJA_SCRIPT_SELECTED_URIS"},
    {"thunar", "thunar", "thunar-action.xml", UserPlace::kConfig, "Thunar/uca.xml", ProgramQuoting::kShellInXml, 0644,
     "", true},
}};

// What every file of ours holds, and by what it is known when it is replaced or removed.
inline constexpr std::string_view kIntegrationMark = "Written by kinsort integrate";

// The names of scripts, which are what menus show.
inline constexpr std::string_view kScriptNameEnglish = "Sort into similar folders";
inline constexpr std::string_view kScriptNameJapanese = "似ている名前のフォルダーへ分類";

// "menu|kde|nemo": each integration once, with `separator` between.
std::string IntegrationNames(std::string_view separator);
bool IsIntegration(std::string_view name);

// The template with its places filled.
std::string FillTemplate(std::string_view text, const IntegrationFile& file, std::string_view program);

// A list of custom actions with nothing in it.
inline constexpr std::string_view kEmptyActionList =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n</actions>\n";
// The list without our action, everything else as it was.
std::string WithoutOurAction(std::string_view list);
// The list with `action` as its last one, in place of an older one of ours. Nothing for a text that is no such list.
std::optional<std::string> WithOurAction(std::string_view list, std::string_view action);

}  // namespace kinsort
