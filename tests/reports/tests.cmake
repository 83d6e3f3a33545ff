varnis_add_test(NAME tst_reporttables LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_reporttables.cpp)
