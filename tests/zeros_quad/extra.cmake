# A Fortran caller of the shipped library, built with 64-bit default integers.
if(CMAKE_Fortran_COMPILER)
  add_executable(test_zeros_fortran ${CMAKE_CURRENT_LIST_DIR}/fortran/zeros_caller.f90)
  target_compile_options(test_zeros_fortran PRIVATE -fdefault-integer-8)
  target_link_libraries(test_zeros_fortran PRIVATE vek)
  add_test(NAME zeros_fortran_caller COMMAND test_zeros_fortran)
  set_tests_properties(zeros_fortran_caller PROPERTIES LABELS zeros_quad)
endif()
