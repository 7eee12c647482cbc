# The threading tests under ThreadSanitizer (tsan/CMakeLists.txt, a clang project built through
# ExternalProject beside the release build), when VEK_TSAN is on and clang with LLVM's OpenMP runtime and its
# Archer tool is found. The Archer tool is named to the runtime explicitly, and TSan stops at the first report.
if(VEK_TSAN AND NOT VEK_SANITIZE)
  find_program(VEK_TSAN_CLANGXX NAMES clang++-14 clang++)
  set(vek_archer "")
  if(VEK_TSAN_CLANGXX)
    execute_process(COMMAND ${VEK_TSAN_CLANGXX} -print-resource-dir OUTPUT_VARIABLE vek_clang_resources
                    OUTPUT_STRIP_TRAILING_WHITESPACE)
    find_library(VEK_ARCHER NAMES archer HINTS ${vek_clang_resources}/../.. NO_DEFAULT_PATH)
    set(vek_archer ${VEK_ARCHER})
  endif()
  if(NOT vek_archer)
    message(STATUS "clang++ with libomp's Archer tool not found: no ThreadSanitizer build of the threading tests")
  else()
    include(${PROJECT_SOURCE_DIR}/cmake/VekClangSubproject.cmake)
    set(vek_tsan_dir ${PROJECT_BINARY_DIR}/threads-tsan)
    vek_clang_subproject(vek_threads_tsan ${CMAKE_CURRENT_LIST_DIR}/tsan ${vek_tsan_dir} ${VEK_TSAN_CLANGXX}
                         vek_generated vek_openblas)
    # The runtime itself is not instrumented: Archer's annotations stand for its synchronisation, and its own
    # accesses are not checked (ignore_noninstrumented_modules, as Archer asks).
    set(vek_tsan_environment OMP_TOOL_LIBRARIES=${vek_archer} KMP_WARNINGS=0
        TSAN_OPTIONS=ignore_noninstrumented_modules=1:halt_on_error=1:exitcode=66)
    add_test(NAME threads_tsan COMMAND ${vek_tsan_dir}/test_threads_tsan)
    # The same build must see a race that is there.
    add_test(NAME threads_tsan_sees_a_race COMMAND ${vek_tsan_dir}/tsan_race_canary)
    set_tests_properties(threads_tsan threads_tsan_sees_a_race PROPERTIES LABELS threads
                         ENVIRONMENT "${vek_tsan_environment}")
    set_tests_properties(threads_tsan_sees_a_race PROPERTIES PASS_REGULAR_EXPRESSION "ThreadSanitizer: data race")
  endif()
endif()
