varnis_add_test(NAME tst_cli LABEL integration SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_cli.cpp)
target_compile_definitions(tst_cli PRIVATE VARNIS_BINARY="$<TARGET_FILE:varnis>")
add_dependencies(tst_cli varnis)
