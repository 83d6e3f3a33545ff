varnis_add_test(NAME tst_cli LABEL integration SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_cli.cpp)
target_compile_definitions(tst_cli PRIVATE VARNIS_BINARY="$<TARGET_FILE:varnis>")
add_dependencies(tst_cli varnis)
# One case drives the command line in process, on virtual time.
target_link_libraries(tst_cli PRIVATE varnis_cli)
