# The system's number as a Status: its own small library, because everything on this platform needs it.
if(NOT TARGET kinsort_linux_error)
  add_library(kinsort_linux_error STATIC LinuxError.cpp)
  target_link_libraries(kinsort_linux_error PUBLIC kinsort_platform)
endif()

kinsort_library(linux_paths SOURCES ChildReaper.cpp LinuxClock.cpp LinuxDesktopOpener.cpp LinuxFileSystem.cpp
  LinuxPathCodec.cpp LinuxProcesses.cpp LinuxSystemInfo.cpp PathWalk.cpp
  DEPS kinsort_platform kinsort_linux_error Threads::Threads)
target_link_libraries(kinsort_linux_paths PRIVATE ICU::uc)
kinsort_test(LinuxPathCodec_test SOURCES LinuxPathCodec_test.cpp DEPS kinsort_linux_paths)
kinsort_test(FileSystem_test SOURCES FileSystem_test.cpp DEPS kinsort_linux_paths kinsort_fake_paths)
kinsort_test(LinuxProcesses_test SOURCES LinuxProcesses_test.cpp DEPS kinsort_linux_paths)
kinsort_test(LinuxDesktopOpener_test SOURCES LinuxDesktopOpener_test.cpp DEPS kinsort_linux_paths kinsort_fake_paths)
