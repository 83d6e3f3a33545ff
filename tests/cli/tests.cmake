# Commands run in process, on virtual time, against scripted answers.
varnis_add_test(NAME tst_analyticscommand LABEL integration SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_analyticscommand.cpp)
target_link_libraries(tst_analyticscommand PRIVATE varnis_cli)
