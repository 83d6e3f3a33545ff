varnis_add_test(NAME tst_reporttables LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_reporttables.cpp)
varnis_add_test(NAME tst_analytics LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_analytics.cpp)
