kinsort_library(fake_sys SOURCES MemoryContent.cpp MemoryDisk.cpp MemorySys.cpp MemorySysFiles.cpp MemorySysSetup.cpp FaultSys.cpp
  DEPS kinsort_platform)

# The rules of Sys, on every implementation of it.
kinsort_test(sys_contract_test SOURCES ../Sys_contract_test.cpp ../Sys_contract_files_test.cpp
  DEPS kinsort_${KINSORT_BACKEND}_sys kinsort_fake_sys)
kinsort_test(fake_sys_test SOURCES MemorySys_test.cpp FaultSys_test.cpp DEPS kinsort_fake_sys)
