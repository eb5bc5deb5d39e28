# Files: what happens to them, and what is written to them.
set(file_SOURCES
    services/FileOptions.h
    services/FileReport.cpp
    services/FileReport.h
    services/FileService.cpp
    services/FileService.h
    services/FileSigns.cpp
    services/FileSigns.h
    services/TailFile.cpp
    services/TailFile.h
    services/TailFollower.cpp
    services/TailFollower.h
    services/TailReader.cpp
    services/TailReader.h)
