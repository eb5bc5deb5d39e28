set(text_TESTS
    AttributedStringTest.cpp
    CharacterSetTest.cpp
    DecimalNumberTest.cpp
    ParagraphStyleTest.cpp
    ScannerTest.cpp
    TextAttachmentTest.cpp
    LineCacheTest.cpp
    LineCharactersTest.cpp
    TextLineTest.cpp
    TextMeasurementTest.cpp
    attributed_string_archivesTest.cpp
    line_rangesTest.cpp
    number_parsingTest.cpp
    string_searchTest.cpp
    text_drawingTest.cpp
    value_numbersTest.cpp)

# A process of its own for what one process can do only once.
add_executable(zqticker-text-probe ${CMAKE_CURRENT_LIST_DIR}/TextProbe.cpp)
target_link_libraries(zqticker-text-probe PRIVATE zqticker_platform)
set_target_properties(zqticker-text-probe PROPERTIES RUNTIME_OUTPUT_DIRECTORY
                                                     "${PROJECT_BINARY_DIR}/bin")
cmake_language(DEFER CALL add_dependencies zqticker-tests-platform zqticker-text-probe)
