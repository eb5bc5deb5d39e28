# What the user has chosen, kept.
set(settings_SOURCES)
