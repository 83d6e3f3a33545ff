# The Secret Service path of the platform keychain; other platforms would hit the user's own
# keychain (and its prompts).
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  # Inside a private D-Bus session with a throw-away, unlocked keyring.
  varnis_add_test(NAME tst_keychain LABEL integration
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_keychain.cpp
    WRAPPER sh ${CMAKE_CURRENT_LIST_DIR}/run-with-keyring.sh)
  # Points the session bus at a socket that does not exist, so it needs no wrapper.
  varnis_add_test(NAME tst_keychain_unavailable LABEL integration
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/tst_keychain_unavailable.cpp)
  # A keyring that waits for a prompt nobody can answer must fail the run, not hang it.
  set_tests_properties(tst_keychain tst_keychain_unavailable PROPERTIES TIMEOUT 60)
endif()
