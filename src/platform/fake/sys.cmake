kinsort_library(fake_sys SOURCES MemoryContent.cpp MemoryDisk.cpp MemorySys.cpp MemorySysFiles.cpp MemorySysSetup.cpp FaultSys.cpp
  DEPS kinsort_platform)
