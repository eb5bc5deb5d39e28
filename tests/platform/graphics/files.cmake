set(graphics_TESTS)
