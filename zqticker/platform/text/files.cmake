set(text_PUBLIC_HEADERS)
set(text_PRIVATE_HEADERS)
set(text_SOURCES)
