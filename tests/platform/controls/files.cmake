set(controls_TESTS ButtonCellTest.cpp CellTest.cpp TrackingSessionTest.cpp cell_archivesTest.cpp)
