varnis_add_test(NAME tst_reporttables LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_reporttables.cpp)
varnis_add_test(NAME tst_salesreports LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_salesreports.cpp)
target_link_libraries(tst_salesreports PRIVATE varnis_cli)
