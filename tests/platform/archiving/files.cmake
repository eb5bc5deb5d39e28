set(archiving_TESTS ArchiveBuilder.cpp KeyedArchiverTest.cpp)
