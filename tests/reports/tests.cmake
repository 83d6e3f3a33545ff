varnis_add_test(NAME tst_reporttables LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_reporttables.cpp)
varnis_add_test(NAME tst_analytics LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_analytics.cpp)
varnis_add_test(NAME tst_reportarchive LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_reportarchive.cpp)
# The archive's command runs in process, on the same store.
target_link_libraries(tst_reportarchive PRIVATE varnis_cli)
varnis_add_test(NAME tst_salesreports LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_salesreports.cpp)
target_link_libraries(tst_salesreports PRIVATE varnis_cli)
varnis_add_test(NAME tst_chartscale LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_chartscale.cpp)
varnis_add_test(NAME tst_salesarchive LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_salesarchive.cpp)
