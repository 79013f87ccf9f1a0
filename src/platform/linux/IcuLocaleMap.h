// The locale mappings from the Unicode data of ICU.
#pragma once

#include <memory>

#include "platform/LocaleMap.h"

namespace kinsort {

// Never null. Without its data ICU maps nothing: every unit then stays as it is.
std::unique_ptr<LocaleMap> MakeIcuLocaleMap();

}  // namespace kinsort
