# The baseline of bench_systems: GSL's hybrid solver for systems (Debian's libgsl-dev). Linked into this benchmark
# only.
find_package(GSL REQUIRED)
target_link_libraries(bench_systems PRIVATE GSL::gsl)
