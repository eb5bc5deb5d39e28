set(graphics_PUBLIC_HEADERS)
set(graphics_PRIVATE_HEADERS)
set(graphics_SOURCES)
