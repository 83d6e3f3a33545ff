varnis_add_test(NAME tst_performance LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_performance.cpp)
# The command runs in process, on the same service.
target_link_libraries(tst_performance PRIVATE varnis_cli)
