set(text_PUBLIC_HEADERS AttributedString.h CharacterSet.h ParagraphStyle.h Scanner.h TextAttachment.h
                        line_ranges.h number_parsing.h string_drawing.h string_search.h
                        text_attributes.h)
set(text_PRIVATE_HEADERS TextLine_p.h TextStyle_p.h bidi_p.h emoji_p.h line_breaks_p.h)
set(text_SOURCES
    AttributedString.cpp
    AttributedStringCoding.cpp
    CharacterSet.cpp
    MutableAttributedString.cpp
    ParagraphStyle.cpp
    Scanner.cpp
    TextAttachment.cpp
    TextLine.cpp
    TextStyle.cpp
    bidi.cpp
    emoji.cpp
    line_breaks.cpp
    line_ranges.cpp
    number_parsing.cpp
    string_drawing.cpp
    string_search.cpp)
