# Programs that must use the shipped shared library itself: a host with its own console function, and a
# Fortran caller built with 64-bit default integers.
add_executable(test_frame_host ${CMAKE_CURRENT_LIST_DIR}/host/host_console_test.cpp)
target_link_libraries(test_frame_host PRIVATE vek GTest::gtest_main)
set_target_properties(test_frame_host PROPERTIES ENABLE_EXPORTS ON)  # mexPrintf visible to the library
gtest_discover_tests(test_frame_host PROPERTIES LABELS frame DISCOVERY_MODE PRE_TEST)

if(CMAKE_Fortran_COMPILER)
  add_executable(test_frame_fortran ${CMAKE_CURRENT_LIST_DIR}/fortran/units_caller.f90)
  target_compile_options(test_frame_fortran PRIVATE -fdefault-integer-8)
  target_link_libraries(test_frame_fortran PRIVATE vek)
  add_test(NAME frame_fortran_caller COMMAND test_frame_fortran WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  set_tests_properties(frame_fortran_caller PROPERTIES LABELS frame)

  add_executable(test_frame_fortran_callback ${CMAKE_CURRENT_LIST_DIR}/fortran/callback_caller.f90)
  target_compile_options(test_frame_fortran_callback PRIVATE -fdefault-integer-8)
  target_link_libraries(test_frame_fortran_callback PRIVATE vek)
  add_test(NAME frame_fortran_callback COMMAND test_frame_fortran_callback)
  set_tests_properties(frame_fortran_callback PROPERTIES LABELS frame)
endif()

# The installed library, its header and its pkg-config file, used by a client program.
if(NOT VEK_SANITIZE)
  add_test(NAME frame_install_and_pkg_config
           COMMAND ${CMAKE_CURRENT_LIST_DIR}/install_check.sh ${PROJECT_BINARY_DIR}
                   ${PROJECT_SOURCE_DIR}/examples/client.c)
  set_tests_properties(frame_install_and_pkg_config PROPERTIES LABELS frame)
endif()
