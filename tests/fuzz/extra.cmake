# The fuzzers of the text parsers (targets/, built by the clang project in this folder's CMakeLists.txt):
# built beside the release build when clang is found and VEK_FUZZ is on, and each run as a test for a fixed
# number of inputs from its committed seeds (corpus/<fuzzer>/) with a fixed random seed, so that a run is
# repeatable. Longer runs: docs/testing.md.
if(VEK_FUZZ AND NOT VEK_SANITIZE)
  find_program(VEK_CLANGXX NAMES clang++-14 clang++)
  if(NOT VEK_CLANGXX)
    message(STATUS "clang++ not found: the fuzzers are not built")
  else()
    include(${PROJECT_SOURCE_DIR}/cmake/VekClangSubproject.cmake)
    set(vek_fuzz_dir ${PROJECT_BINARY_DIR}/fuzz)
    vek_clang_subproject(vek_fuzzers ${CMAKE_CURRENT_LIST_DIR} ${vek_fuzz_dir} ${VEK_CLANGXX} vek_generated)

    # Inputs per test run: each fuzzer takes a few seconds (the options file goes through a file on a unit).
    set(vek_fuzz_runs error_buffer=60000 char_value=60000 units_record=2000 printer_format=8000
                      option_line=8000 options_file=1500)
    foreach(entry IN LISTS vek_fuzz_runs)
      string(REPLACE "=" ";" entry ${entry})
      list(GET entry 0 name)
      list(GET entry 1 runs)
      add_test(NAME fuzz_${name}
               COMMAND ${CMAKE_CURRENT_LIST_DIR}/run_fuzzer.sh ${vek_fuzz_dir}/fuzz_${name}
                       ${CMAKE_CURRENT_LIST_DIR}/corpus/${name} ${vek_fuzz_dir}/runs/${name} -seed=1 -runs=${runs})
      set_tests_properties(fuzz_${name} PROPERTIES LABELS fuzz)
    endforeach()
  endif()
endif()
