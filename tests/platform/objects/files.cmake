set(objects_TESTS AssertionHandlerTest.cpp ErrorTest.cpp MainThreadTest.cpp ObjectTest.cpp
    SelectorTest.cpp WeakTest.cpp)
