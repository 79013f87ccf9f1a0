# How every target of the house is built: one place for warnings, sanitizers and where programs land.

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/obj)

add_library(kinsort_flags INTERFACE)
target_include_directories(kinsort_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(kinsort_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
# g++ 12 sees overlaps in std::string at -O3 that are not there (its bug 105651).
target_compile_options(kinsort_flags INTERFACE
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict>)
if(KINSORT_SANITIZE)
  target_compile_options(kinsort_flags INTERFACE -fsanitize=${KINSORT_SANITIZE} -fno-sanitize-recover=all
    -fno-omit-frame-pointer)
  target_link_options(kinsort_flags INTERFACE -fsanitize=${KINSORT_SANITIZE})
endif()
if(KINSORT_FUZZ)
  target_compile_options(kinsort_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# kinsort_library(NAME SOURCES a.cpp... DEPS other...): the static library kinsort_NAME of one folder of src/.
# DEPS are the arrows of the house: only folders further down.
function(kinsort_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  if(ARG_SOURCES)
    add_library(kinsort_${name} STATIC ${ARG_SOURCES})
    target_link_libraries(kinsort_${name} PUBLIC kinsort_flags ${ARG_DEPS})
  else()
    add_library(kinsort_${name} INTERFACE)
    target_link_libraries(kinsort_${name} INTERFACE kinsort_flags ${ARG_DEPS})
  endif()
endfunction()

# kinsort_test(NAME SOURCES a_test.cpp... DEPS libs...): one test program and one ctest entry.
function(kinsort_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE kinsort_flags ${ARG_DEPS} GTest::gmock GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 900)
endfunction()
