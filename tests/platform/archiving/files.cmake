# The archive printer belongs to the program; its tests link it with the platform and with what
# shows sizes.
set(archiving_TESTS
    ArchiveBuilder.cpp
    ArchiveCommandTest.cpp
    BinaryPropertyListReaderTest.cpp
    golden_archivesTest.cpp
    interchangeTest.cpp
    KeyedArchiverTest.cpp
    KeyedUnarchiverRefusalsTest.cpp
    KeyedUnarchiverTest.cpp
    number_textTest.cpp
    PlaceholderObjectTest.cpp
    PortCoderTest.cpp
    PropertyListWriterTest.cpp
    SequentialArchiverTest.cpp
    unarchiver_testing.h
    value_classesTest.cpp
    XmlPropertyListReaderTest.cpp
    ../../../app/commands/ArchiveCommand.cpp
    ../../../app/commands/ArchiveTree.cpp
    ../../../app/commands/OptionTable.cpp
    ../../../app/commands/OutputValue.cpp
    ../../../app/commands/failures.cpp
    ../../../app/commands/nearest_word.cpp
    ../../../app/commands/size_text.cpp
    ../../../app/intake/SilencedStandardError.cpp)
