# The baseline of bench_quad_multidimensional: GSL's plain Monte Carlo (Debian's libgsl-dev).
find_package(GSL REQUIRED)
target_link_libraries(bench_quad_multidimensional PRIVATE GSL::gsl)
