add_executable(Journal_fuzz Journal_fuzz.cpp)
target_link_libraries(Journal_fuzz PRIVATE kinsort_fileop)
target_link_options(Journal_fuzz PRIVATE -fsanitize=fuzzer)

# Its seeds: JournalCorpus FOLDER, then Journal_fuzz FOLDER.
add_executable(JournalCorpus JournalCorpus.cpp)
target_link_libraries(JournalCorpus PRIVATE kinsort_fileop kinsort_fake_sys kinsort_${KINSORT_BACKEND}_paths)
