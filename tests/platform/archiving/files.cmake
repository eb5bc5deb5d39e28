# The archive printer belongs to the program; its tests link it with the platform.
set(archiving_TESTS
    ArchiveBuilder.cpp
    ArchiveCommandTest.cpp
    BinaryPropertyListReaderTest.cpp
    KeyedArchiverTest.cpp
    KeyedUnarchiverTest.cpp
    number_textTest.cpp
    PropertyListWriterTest.cpp
    value_classesTest.cpp
    XmlPropertyListReaderTest.cpp
    ../../../app/commands/ArchiveCommand.cpp
    ../../../app/commands/ArchiveTree.cpp
    ../../../app/commands/OutputValue.cpp)
