set(graphics_TESTS BezierPathTest.cpp ColorTest.cpp FontTest.cpp GraphicsContextTest.cpp ImageTest.cpp
                   ShadowTest.cpp SystemColorsTest.cpp TiffTest.cpp TileCacheTest.cpp gaussianTest.cpp image_archivesTest.cpp rect_drawingTest.cpp
                   shadow_drawingTest.cpp)
