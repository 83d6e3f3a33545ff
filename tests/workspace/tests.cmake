varnis_add_test(NAME tst_appstate LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_appstate.cpp)
varnis_add_test(NAME tst_navigation LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_navigation.cpp)
varnis_add_test(NAME tst_mockdata LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_mockdata.cpp)
varnis_add_test(NAME tst_applistmodel LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_applistmodel.cpp)
