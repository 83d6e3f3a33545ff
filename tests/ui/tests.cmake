# Window tests: the real screens, offscreen, driven by input events.
add_library(varnis_ui_fixture STATIC ${CMAKE_CURRENT_LIST_DIR}/UiFixture.cpp ${CMAKE_CURRENT_LIST_DIR}/UiFixture.h)
target_link_libraries(varnis_ui_fixture PUBLIC varnis_test_support varnis_ui varnis_screens)
target_compile_options(varnis_ui_fixture PRIVATE ${VARNIS_WARNINGS})
target_compile_definitions(varnis_ui_fixture PUBLIC VARNIS_SCREENSHOT_DIR="${CMAKE_BINARY_DIR}/screenshots")

function(varnis_add_ui_test name)
  varnis_add_test(NAME ${name} LABEL ui SOURCES ${ARGN})
  target_link_libraries(${name} PRIVATE varnis_ui_fixture)
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT
               "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_FUNCTION_LIST_DIR}/lsan.supp")
endfunction()

varnis_add_ui_test(tst_ui ${CMAKE_CURRENT_LIST_DIR}/tst_ui.cpp)

# The random walk: longer in the sanitizer build, where it is most likely to find a use after free.
varnis_add_ui_test(tst_soak ${CMAKE_CURRENT_LIST_DIR}/tst_soak.cpp)
if(VARNIS_SANITIZE)
  target_compile_definitions(tst_soak PRIVATE VARNIS_SOAK_STEPS=600)
else()
  target_compile_definitions(tst_soak PRIVATE VARNIS_SOAK_STEPS=300)
endif()
varnis_add_ui_test(tst_storetexts ${CMAKE_CURRENT_LIST_DIR}/tst_storetexts.cpp)
varnis_add_ui_test(tst_settings ${CMAKE_CURRENT_LIST_DIR}/tst_settings.cpp)
varnis_add_ui_test(tst_bulkactions_ui ${CMAKE_CURRENT_LIST_DIR}/tst_bulkactions_ui.cpp)
varnis_add_ui_test(tst_testflight ${CMAKE_CURRENT_LIST_DIR}/tst_testflight.cpp)
varnis_add_ui_test(tst_testflightdetail ${CMAKE_CURRENT_LIST_DIR}/tst_testflightdetail.cpp)
varnis_add_ui_test(tst_analytics_ui ${CMAKE_CURRENT_LIST_DIR}/tst_analytics_ui.cpp)
varnis_add_ui_test(tst_reports_ui ${CMAKE_CURRENT_LIST_DIR}/tst_reports_ui.cpp)
