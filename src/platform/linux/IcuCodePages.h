// Code pages by ICU's converters and its detector of encodings.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/CodePages.h"

namespace kinsort {

std::unique_ptr<CodePages> MakeIcuCodePages();

// Every number that MakeIcuCodePages() knows, ascending; kCodePageAnsi is not among them.
std::vector<uint32_t> KnownCodePages();

}  // namespace kinsort
