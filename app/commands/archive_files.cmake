# The archive printer, seen from app/.
set(archive_command_SOURCES
    commands/ArchiveCommand.cpp
    commands/ArchiveCommand.h
    commands/ArchiveTree.cpp
    commands/ArchiveTree.h
    commands/OutputValue.cpp
    commands/OutputValue.h
    commands/size_text.cpp
    commands/size_text.h)
set(archive_SOURCES ${archive_command_SOURCES})
