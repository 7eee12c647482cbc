# The baseline of the Gauss-rule case of bench_quad_rules: GSL's fixed-point rules (Debian's libgsl-dev).
find_package(GSL REQUIRED)
target_link_libraries(bench_quad_rules PRIVATE GSL::gsl)
