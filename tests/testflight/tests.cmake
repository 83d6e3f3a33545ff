varnis_add_test(NAME tst_testflightservice LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_testflightservice.cpp)
varnis_add_test(NAME tst_testerimport LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_testerimport.cpp)
varnis_add_test(NAME tst_testflightviewmodel LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_testflightviewmodel.cpp)
varnis_add_test(NAME tst_betaviewmodels LABEL unit SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_betaviewmodels.cpp)
