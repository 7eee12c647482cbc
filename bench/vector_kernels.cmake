# The baseline of bench_vector_kernels: Debian's own OpenBLAS shared library, loaded with its own symbol scope.
find_library(VEK_OPENBLAS64_SHARED NAMES libopenblas64.so.0 openblas64 PATH_SUFFIXES openblas64-openmp REQUIRED)
target_compile_definitions(bench_vector_kernels PRIVATE VEK_OPENBLAS64_SHARED="${VEK_OPENBLAS64_SHARED}")
target_link_libraries(bench_vector_kernels PRIVATE ${CMAKE_DL_LIBS})
