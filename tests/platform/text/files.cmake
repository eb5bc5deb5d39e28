set(text_TESTS)
