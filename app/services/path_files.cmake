# Files by their paths: what happens to them.
set(path_SOURCES
    services/ErrorKeepingQueue.cpp
    services/ErrorKeepingQueue.h
    services/FileState.cpp
    services/FileState.h
    services/FolderWatch.cpp
    services/FolderWatch.h
    services/PathWatch.cpp
    services/PathWatch.h
    services/path_steps.cpp
    services/path_steps.h)
