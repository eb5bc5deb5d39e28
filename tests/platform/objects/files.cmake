set(objects_TESTS AssertionHandlerTest.cpp ErrorTest.cpp ObjectTest.cpp SelectorTest.cpp
    WeakTest.cpp)
