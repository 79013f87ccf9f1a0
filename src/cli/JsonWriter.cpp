#include "cli/JsonWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "text/FileUri.h"
#include "text/Utf8.h"

namespace kinsort {

void JsonWriter::BeforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (nesting_.empty()) return;
    const bool isFirst = nesting_.back() == Place::kArrayStart;
    if (layout_ == JsonLayout::kLines)
        console_.Print(isFirst ? "\n" : ",\n");
    else if (!isFirst)
        console_.Print(", ");
    nesting_.back() = Place::kArray;
}

void JsonWriter::BeginArray() {
    BeforeValue();
    console_.Print("[");
    nesting_.push_back(Place::kArrayStart);
}

void JsonWriter::BeginArray(std::string_view name) {
    Key(name);
    BeginArray();
}

void JsonWriter::EndArray() {
    const bool isEmpty = nesting_.back() == Place::kArrayStart;
    console_.Print(isEmpty || layout_ == JsonLayout::kOneLine ? "]" : "\n]");
    nesting_.pop_back();
}

void JsonWriter::BeginObject() {
    BeforeValue();
    console_.Print("{");
    nesting_.push_back(Place::kObjectStart);
}

void JsonWriter::EndObject() {
    console_.Print("}");
    nesting_.pop_back();
}

void JsonWriter::Key(std::string_view name) {
    if (nesting_.back() == Place::kObject) console_.Print(", ");
    nesting_.back() = Place::kObject;
    afterKey_ = true;
    console_.Print("\"");
    console_.Print(name);
    console_.Print("\": ");
}

void JsonWriter::String(std::string_view utf8) {
    BeforeValue();
    const auto isPlain = [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; };
    if (std::all_of(utf8.begin(), utf8.end(), isPlain)) {
        console_.Print("\"");
        console_.Print(utf8);
        console_.Print("\"");
        return;
    }
    const std::string text = ToUtf8(FromUtf8(utf8));
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += {'\\', c};
        } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            std::array<char, 8> escape{};
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
            quoted += escape.data();
        } else {
            quoted += c;
        }
    }
    console_.Print(quoted + "\"");
}

void JsonWriter::String(std::string_view name, std::string_view utf8) {
    Key(name);
    String(utf8);
}

void JsonWriter::Plain(std::string_view name, std::string_view value) {
    Key(name);
    BeforeValue();
    console_.Print(value);
}

void JsonWriter::Number(std::string_view name, uint64_t value) {
    Plain(name, std::to_string(value));
}

void JsonWriter::Integer(std::string_view name, int64_t value) {
    Plain(name, std::to_string(value));
}

void JsonWriter::Bool(std::string_view name, bool value) {
    Plain(name, value ? "true" : "false");
}

void JsonWriter::Null(std::string_view name) {
    Plain(name, "null");
}

void JsonWriter::Path(std::string_view name, std::string_view nativePath) {
    String(name, nativePath);
    if (ToUtf8(FromUtf8(nativePath)) == nativePath) return;
    String(std::string(name) + "_uri", FileUriOfPath(nativePath));
}

}  // namespace kinsort
