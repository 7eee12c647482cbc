# The hostile-input sweep: its routine table is generated from the declarations (tools/sweepgen.py), so a
# declared routine is swept without anything written here. Two tests: the calls with hostile arguments, and
# every allocation of every routine with declared lengths made to fail in turn.
set(sweep_table ${PROJECT_BINARY_DIR}/gen/sweep/sweep_table.cpp)
file(GLOB sweep_decls CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/exports/*.decl)
file(GLOB sweep_generator CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/decl/*.py)
add_custom_command(
  OUTPUT ${sweep_table}
  COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/sweepgen.py --out ${sweep_table} ${sweep_decls}
  DEPENDS ${PROJECT_SOURCE_DIR}/tools/sweepgen.py ${PROJECT_SOURCE_DIR}/tools/vekgen.py ${sweep_generator} ${sweep_decls}
  COMMENT "Generating the sweep's routine table"
  VERBATIM)
file(GLOB sweep_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/runner/*.cpp)
add_executable(vek_sweep ${sweep_sources} ${sweep_table})
target_link_libraries(vek_sweep PRIVATE vek_static)
target_include_directories(vek_sweep PRIVATE ${CMAKE_CURRENT_LIST_DIR}/runner)
# The table's thunks and user functions are many small functions; optimising them buys nothing.
set_source_files_properties(${sweep_table} PROPERTIES COMPILE_OPTIONS "-O0;-g0")
set(sweep_known --known=${CMAKE_CURRENT_LIST_DIR}/known_failures.txt)
add_test(NAME sweep_self_test COMMAND vek_sweep --self-test --timeout=1)
# Under the sanitizers each call costs some ten times more: half the release build's sample of each routine's
# calls (the release build's guard pages see the rest out of bounds; VEK_SWEEP_LONG=1 makes them all).
set(sweep_calls)
if(VEK_SANITIZE)
  set(sweep_calls --calls=30)
endif()
add_test(NAME sweep_hostile_inputs COMMAND vek_sweep ${sweep_calls} ${sweep_known})
add_test(NAME sweep_allocation_failures COMMAND vek_sweep --alloc ${sweep_known})
set_tests_properties(sweep_self_test sweep_hostile_inputs sweep_allocation_failures PROPERTIES LABELS sweep TIMEOUT 1200)
# The two longest tests of the suite: started first, so that the others run beside them (a fresh tree has no
# timings from an earlier run for ctest to order by).
set_tests_properties(sweep_hostile_inputs sweep_allocation_failures PROPERTIES COST 10000)
if(NOT VEK_SANITIZE)
  add_test(NAME sweep_emitter COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/emit_sweep_test.py)
  set_tests_properties(sweep_emitter PROPERTIES LABELS sweep)
endif()
