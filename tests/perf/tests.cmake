varnis_add_test(NAME tst_performance LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_performance.cpp)
# The command runs in process, on the same service.
target_link_libraries(tst_performance PRIVATE varnis_cli)

# The tab in a window of its own, driven by input events.
varnis_add_test(NAME tst_performance_ui LABEL ui SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_performance_ui.cpp)
target_link_libraries(tst_performance_ui PRIVATE varnis_ui_fixture)
set_property(TEST tst_performance_ui APPEND PROPERTY ENVIRONMENT
             "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/../ui/lsan.supp")
