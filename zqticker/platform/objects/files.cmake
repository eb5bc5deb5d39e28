set(objects_PUBLIC_HEADERS AssertionHandler.h AtomicProperty.h Exception.h Object.h Range.h
    Weak.h)
set(objects_PRIVATE_HEADERS)
set(objects_SOURCES AssertionHandler.cpp Exception.cpp Object.cpp Weak.cpp)
