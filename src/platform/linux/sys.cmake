kinsort_library(linux_sys SOURCES LinuxSys.cpp LinuxOpen.cpp LinuxAttributes.cpp LinuxError.cpp DEPS kinsort_platform)
