varnis_add_test(NAME tst_versions LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_versions.cpp)
