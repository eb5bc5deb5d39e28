# The tool for the look of buttons, seen from app/.
set(appearance_SOURCES
    commands/AppearanceCommand.cpp
    commands/AppearanceCommand.h
    commands/ButtonSample.cpp
    commands/ButtonSample.h
    commands/ContactSheet.cpp
    commands/ContactSheet.h
    commands/JsonValue.cpp
    commands/JsonValue.h
    commands/appearance_json.cpp
    commands/appearance_json.h
    commands/appearance_tables.cpp
    commands/appearance_tables.h
    commands/color_contrast.cpp
    commands/color_contrast.h
    commands/color_json.cpp
    commands/color_json.h)
