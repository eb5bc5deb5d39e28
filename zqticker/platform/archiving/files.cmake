set(archiving_PUBLIC_HEADERS ClassRegistry.h Coder.h PortCoder.h)
set(archiving_PRIVATE_HEADERS)
set(archiving_SOURCES ClassRegistry.cpp Coder.cpp PortCoder.cpp)
