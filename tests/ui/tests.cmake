varnis_add_test(NAME tst_ui LABEL ui SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_ui.cpp)
target_link_libraries(tst_ui PRIVATE varnis_ui)
target_compile_definitions(tst_ui PRIVATE VARNIS_SCREENSHOT_DIR="${CMAKE_BINARY_DIR}/screenshots")
set_property(TEST tst_ui APPEND PROPERTY ENVIRONMENT "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/lsan.supp")
