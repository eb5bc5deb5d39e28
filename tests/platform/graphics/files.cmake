set(graphics_TESTS ColorTest.cpp FontTest.cpp GraphicsContextTest.cpp ImageTest.cpp ShadowTest.cpp
                   TiffTest.cpp TileCacheTest.cpp image_archivesTest.cpp)
