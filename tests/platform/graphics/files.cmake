set(graphics_TESTS GraphicsContextTest.cpp ImageTest.cpp)
