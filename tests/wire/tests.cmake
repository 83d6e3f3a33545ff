varnis_add_test(NAME tst_wire LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_wire.cpp)
