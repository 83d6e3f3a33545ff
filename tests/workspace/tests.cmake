varnis_add_test(NAME tst_appstate LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_appstate.cpp)
