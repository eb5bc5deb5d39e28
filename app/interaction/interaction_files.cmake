# The strip under pointer, finger and keyboard.
set(interaction_SOURCES)
