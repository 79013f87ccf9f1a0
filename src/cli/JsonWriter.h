// JSON as it is printed: streamed, so that a plan of a million rows needs no tree in memory.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "cli/Console.h"

namespace kinsort {

enum class JsonLayout : uint8_t {
    kLines,    // elements of an array stand on lines of their own
    kOneLine,  // for several texts, one a line
};

// Calls must nest as the JSON does. A value of an object is given with its name, an element of an array without.
class JsonWriter {
  public:
    explicit JsonWriter(Console& console, JsonLayout layout = JsonLayout::kLines)
        : console_(console), layout_(layout) {}

    void BeginArray();
    void BeginArray(std::string_view name);
    void EndArray();
    void BeginObject();
    void EndObject();
    void String(std::string_view utf8);  // bytes that are not UTF-8 become U+FFFD
    void String(std::string_view name, std::string_view utf8);
    void Number(std::string_view name, uint64_t value);
    void Integer(std::string_view name, int64_t value);
    void Bool(std::string_view name, bool value);
    void Null(std::string_view name);

    // A native path; when it is not valid UTF-8, its exact file:// address follows under name + "_uri".
    void Path(std::string_view name, std::string_view nativePath);

    // Ends the text with an end of line. Call it once, last.
    void Finish() { console_.Print("\n"); }

  private:
    enum class Place : uint8_t { kArrayStart, kArray, kObjectStart, kObject };
    void BeforeValue();
    void Key(std::string_view name);
    void Plain(std::string_view name, std::string_view value);

    Console& console_;
    JsonLayout layout_;
    std::vector<Place> nesting_;
    bool afterKey_ = false;
};

}  // namespace kinsort
