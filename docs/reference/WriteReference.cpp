// script_reference DOCUMENT EXAMPLES EDITORS   writes the generated half of the document and the syntax files of the
//                                              folder EDITORS anew
// script_reference --check ...                 only says whether that would change anything
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "script/reference/EditorSyntax.h"
#include "script/reference/ScriptReference.h"

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

bool ReadFile(const std::string& path, std::string& text) {
    const File in(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!in) return false;
    char piece[4096];
    for (size_t size = 1; size > 0;) {
        size = std::fread(piece, 1, sizeof piece, in.get());
        text.append(piece, size);
    }
    return std::ferror(in.get()) == 0;
}

bool WriteFile(const std::string& path, const std::string& text) {
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), out) == text.size();
    return std::fclose(out) == 0 && isWritten;
}

int Fail(const std::string& message) {
    std::fprintf(stderr, "script_reference: %s\n", message.c_str());
    return 1;
}

// Writes the file unless it only looks whether it holds the text. The exit code.
int Renew(bool onlyChecks, const std::string& path, const std::string& text) {
    if (!onlyChecks) return WriteFile(path, text) ? 0 : Fail("cannot write " + path);
    std::string written;
    if (ReadFile(path, written) && written == text) return 0;
    return Fail(path + " is behind the tables; run script_reference without --check");
}

int RenewEditors(bool onlyChecks, const std::string& folder) {
    return Renew(onlyChecks, folder + "/vim/syntax/ecs.vim", kinsort::WriteVimSyntax()) |
           Renew(onlyChecks, folder + "/kinsort-script.xml", kinsort::WriteKateSyntax());
}

int RenewDocument(bool onlyChecks, const std::string& document, const std::string& examples) {
    std::string text;
    std::string cases;
    if (!ReadFile(document, text) || !ReadFile(examples, cases))
        return Fail("cannot read " + document + " and " + examples);
    const size_t mark = text.find(kinsort::kReferenceMark);
    if (mark == text.npos) return Fail(document + " has no line that begins the generated half");
    std::vector<std::string> missing;
    const std::string written = text.substr(0, mark) + std::string(kinsort::kReferenceMark) +
                                kinsort::WriteScriptReference(kinsort::ReadReferenceExamples(cases), missing);
    for (const std::string& name : missing)
        Fail(name);
    if (!missing.empty()) return 1;
    return Renew(onlyChecks, document, written);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const bool onlyChecks = !arguments.empty() && arguments[0] == "--check";
    if (onlyChecks) arguments.erase(arguments.begin());
    if (arguments.size() == 3)
        return RenewDocument(onlyChecks, arguments[0], arguments[1]) | RenewEditors(onlyChecks, arguments[2]);
    std::fprintf(stderr, "usage: script_reference [--check] DOCUMENT EXAMPLES EDITORS\n");
    return 2;
}
