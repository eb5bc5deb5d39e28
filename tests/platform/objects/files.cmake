set(objects_TESTS AssertionHandlerTest.cpp ObjectTest.cpp WeakTest.cpp)
