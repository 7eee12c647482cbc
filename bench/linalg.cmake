# The baselines of bench_linalg, loaded at run time each with its own symbol scope so that their dgemm_ and
# dgetrf_ do not meet the library's: Debian's own OpenBLAS shared library (the same build the library links
# statically) and, when liblapack64-3 is installed, the reference LAPACK (over the system's BLAS).
find_library(VEK_OPENBLAS64_SHARED NAMES libopenblas64.so.0 openblas64 PATH_SUFFIXES openblas64-openmp REQUIRED)
target_compile_definitions(bench_linalg PRIVATE VEK_OPENBLAS64_SHARED="${VEK_OPENBLAS64_SHARED}")
execute_process(COMMAND dpkg -L liblapack64-3 OUTPUT_VARIABLE reference_files ERROR_QUIET)
string(REGEX MATCH "[^\n]*/liblapack64\\.so\\.3(\n|$)" VEK_REFERENCE_LAPACK64 "${reference_files}")
string(STRIP "${VEK_REFERENCE_LAPACK64}" VEK_REFERENCE_LAPACK64)
if(VEK_REFERENCE_LAPACK64)
  target_compile_definitions(bench_linalg PRIVATE VEK_REFERENCE_LAPACK64="${VEK_REFERENCE_LAPACK64}")
endif()
target_link_libraries(bench_linalg PRIVATE ${CMAKE_DL_LIBS})
