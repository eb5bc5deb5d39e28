set(archiving_TESTS
    ArchiveBuilder.cpp
    BinaryPropertyListReaderTest.cpp
    KeyedArchiverTest.cpp
    number_textTest.cpp
    PropertyListWriterTest.cpp
    XmlPropertyListReaderTest.cpp)
