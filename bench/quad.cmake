# The baseline of bench_quad: GSL's adaptive quadrature (Debian's libgsl-dev). Linked into this benchmark only.
find_package(GSL REQUIRED)
target_link_libraries(bench_quad PRIVATE GSL::gsl)
