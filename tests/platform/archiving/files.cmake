set(archiving_TESTS)
