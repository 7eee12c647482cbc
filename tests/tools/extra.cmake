# The generator's own tests (Python, no test program of their own) and the suite-wide checks on what it
# generates. Release build only: they do not depend on how the library is compiled.
if(VEK_SANITIZE)
  return()
endif()

set(tools_tests ${CMAKE_CURRENT_LIST_DIR})

# Golden files and malformed declarations of tools/vekgen.py; no err.fail with a number in the sources.
foreach(test IN ITEMS golden errors fail_calls)
  add_test(NAME tools_${test} COMMAND ${Python3_EXECUTABLE} ${tools_tests}/${test}_test.py)
  set_tests_properties(tools_${test} PROPERTIES LABELS tools)
endforeach()

# The expected golden layers must compile, and the expected public header must be valid C as well as C++.
add_library(vekgen_golden_compile OBJECT ${tools_tests}/golden/expected/t01_layers.cpp
                                         ${tools_tests}/golden/expected/t02_layers.cpp
                                         ${tools_tests}/golden/public_header.c)
target_include_directories(vekgen_golden_compile PRIVATE ${tools_tests}/golden/expected
                           ${tools_tests}/golden/expected/include ${PROJECT_SOURCE_DIR}/src
                           ${PROJECT_SOURCE_DIR}/include)
set_target_properties(vekgen_golden_compile PROPERTIES C_STANDARD 99 C_EXTENSIONS OFF)

# The committed linear-algebra declarations are what tools/linalg_import.py makes of its inputs now.
add_test(NAME tools_linalg_decls_current
         COMMAND ${Python3_EXECUTABLE} ${tools_tests}/linalg_decls_test.py ${CMAKE_CURRENT_BINARY_DIR}/linalg_import)
set_tests_properties(tools_linalg_decls_current PROPERTIES LABELS tools)

# Message coverage: the log is emptied before the test programs run (they all require the fixture), their
# logs are joined after the last of them, and the union is compared with the declared pairs. The check runs
# only when selected with the programs (the whole suite); a partial run stops at the join.
set(coverage ${Python3_EXECUTABLE} ${tools_tests}/message_coverage.py)
add_test(NAME tools_message_log_reset COMMAND ${coverage} reset ${VEK_MESSAGE_LOG_DIR})
add_test(NAME tools_message_log_collect COMMAND ${coverage} collect ${VEK_MESSAGE_LOG_DIR})
add_test(NAME tools_message_coverage
         COMMAND ${coverage} check ${VEK_MESSAGE_LOG_DIR} ${PROJECT_BINARY_DIR}/gen/message_pairs.txt)
set_tests_properties(tools_message_log_reset PROPERTIES FIXTURES_SETUP vek_message_log LABELS coverage)
set_tests_properties(tools_message_log_collect PROPERTIES FIXTURES_CLEANUP vek_message_log LABELS coverage)
set_tests_properties(tools_message_coverage PROPERTIES DEPENDS tools_message_log_collect LABELS coverage)
