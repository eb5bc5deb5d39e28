# What the user has chosen, kept.
set(settings_SOURCES
    commands/strip_values.cpp
    commands/strip_values.h
    settings/Settings.h
    settings/SettingsCommand.cpp
    settings/SettingsCommand.h
    settings/SettingsFile.cpp
    settings/SettingsFile.h
    settings/SettingsStore.cpp
    settings/SettingsStore.h
    settings/autostart.cpp
    settings/autostart.h
    settings/run_settings.cpp
    settings/run_settings.h
    settings/setting_table.cpp
    settings/setting_table.h)
