// JSON as it is printed: streamed, so that a plan of a million rows needs no tree in memory.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "cli/Console.h"

namespace kinsort {

// Calls must nest as the JSON does. In an object every value follows its Key.
class JsonWriter {
  public:
    explicit JsonWriter(Console& console) : console_(console) {}

    void BeginArray();
    void EndArray();
    void BeginObject();
    void EndObject();
    void Key(std::string_view name);
    void String(std::string_view utf8);  // bytes that are not UTF-8 become U+FFFD
    void Number(uint64_t value);
    void Bool(bool value);
    void Null();

    // A native path under `name`; when it is not valid UTF-8, its exact file:// address follows under name + "_uri".
    void Path(std::string_view name, std::string_view nativePath);

    // Ends the text with an end of line. Call it once, last.
    void Finish() { console_.Print("\n"); }

  private:
    enum class Place : uint8_t { kArrayStart, kArray, kObjectStart, kObject };
    void BeforeValue();

    Console& console_;
    std::vector<Place> nesting_;
    bool afterKey_ = false;
};

}  // namespace kinsort
