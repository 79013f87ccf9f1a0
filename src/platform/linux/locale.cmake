kinsort_library(linux_locale SOURCES IcuLocaleMap.cpp DEPS kinsort_platform ICU::uc)
kinsort_test(IcuLocaleMap_test SOURCES IcuLocaleMap_test.cpp DEPS kinsort_linux_locale)
