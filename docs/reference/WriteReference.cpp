// script_reference DOCUMENT EXAMPLES           writes the generated half of the document anew
// script_reference --check DOCUMENT EXAMPLES   only says whether that would change anything
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

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

int Run(bool onlyChecks, const std::string& document, const std::string& examples) {
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
    if (onlyChecks)
        return written == text ? 0 : Fail(document + " is behind the tables; run script_reference without --check");
    return WriteFile(document, written) ? 0 : Fail("cannot write " + document);
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.size() == 2) return Run(false, arguments[0], arguments[1]);
    if (arguments.size() == 3 && arguments[0] == "--check") return Run(true, arguments[1], arguments[2]);
    std::fprintf(stderr, "usage: script_reference [--check] DOCUMENT EXAMPLES\n");
    return 2;
}
