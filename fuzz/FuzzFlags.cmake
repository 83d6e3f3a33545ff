# Compiler flags of the fuzz build, for every library of the project: coverage for libFuzzer
# plus AddressSanitizer and UndefinedBehaviorSanitizer, where any finding ends the run.
# -fsanitize=function stays off: clang 14 rejects the QCoro coroutines with it.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "VARNIS_FUZZ needs clang (CXX=clang++); ${CMAKE_CXX_COMPILER_ID} has no libFuzzer.")
endif()
set(VARNIS_FUZZ_SANITIZERS address,undefined)
add_compile_options(-fsanitize=fuzzer-no-link,${VARNIS_FUZZ_SANITIZERS} -fno-sanitize=function
                    -fno-sanitize-recover=undefined -fno-omit-frame-pointer -gline-tables-only)
add_link_options(-fsanitize=${VARNIS_FUZZ_SANITIZERS} -fno-sanitize=function)
