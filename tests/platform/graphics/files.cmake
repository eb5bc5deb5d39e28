set(graphics_TESTS ColorTest.cpp FontTest.cpp GraphicsContextTest.cpp ImageTest.cpp TiffTest.cpp)
