# The baseline of bench_zeros: GSL's Brent solver (Debian's libgsl-dev). Linked into this benchmark only.
find_package(GSL REQUIRED)
target_link_libraries(bench_zeros PRIVATE GSL::gsl)
