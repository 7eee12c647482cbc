# A Fortran caller of D02HAF built with 64-bit default integers against the shipped shared library.
if(CMAKE_Fortran_COMPILER)
  add_executable(test_ode_fortran ${CMAKE_CURRENT_LIST_DIR}/fortran/bratu_caller.f90)
  target_compile_options(test_ode_fortran PRIVATE -fdefault-integer-8)
  target_link_libraries(test_ode_fortran PRIVATE vek)
  add_test(NAME ode_fortran_caller COMMAND test_ode_fortran)
  set_tests_properties(ode_fortran_caller PROPERTIES LABELS ode)
endif()
