# The baseline of bench_linalg: Debian's own OpenBLAS shared library (the same build the library links
# statically), loaded at run time with its own symbol scope so that its dgemm_ does not meet the library's.
find_library(VEK_OPENBLAS64_SHARED NAMES libopenblas64.so.0 openblas64 PATH_SUFFIXES openblas64-openmp REQUIRED)
target_compile_definitions(bench_linalg PRIVATE VEK_OPENBLAS64_SHARED="${VEK_OPENBLAS64_SHARED}")
target_link_libraries(bench_linalg PRIVATE ${CMAKE_DL_LIBS})
