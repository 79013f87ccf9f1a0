kinsort_library(linux_sys SOURCES LinuxSys.cpp LinuxOpen.cpp LinuxAttributes.cpp LinuxError.cpp DEPS kinsort_platform)
kinsort_test(linux_sys_test SOURCES LinuxSys_test.cpp DEPS kinsort_linux_sys)
