# The baseline of bench_lambert: GSL's Lambert W functions (Debian's libgsl-dev). Linked into this benchmark only.
find_package(GSL REQUIRED)
target_link_libraries(bench_lambert PRIVATE GSL::gsl)
