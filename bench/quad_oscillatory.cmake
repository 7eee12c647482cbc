# The baseline of bench_quad_oscillatory: GSL's qawo and qawf (Debian's libgsl-dev). Linked into this benchmark only.
find_package(GSL REQUIRED)
target_link_libraries(bench_quad_oscillatory PRIVATE GSL::gsl)
