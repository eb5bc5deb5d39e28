set(app_settings_SOURCES
    SettingsFileTest.cpp
    SettingsProgramTest.cpp
    SettingsStoreTest.cpp
    autostartTest.cpp
    run_settingsTest.cpp
    setting_tableTest.cpp)
