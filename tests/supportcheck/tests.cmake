# Kept out of tests/support, whose files all go into the support library.
varnis_add_test(NAME tst_support LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_support.cpp)
