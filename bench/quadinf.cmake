# The baseline of bench_quadinf: GSL's qagiu, qawc, qaws and qng (Debian's libgsl-dev). Linked into this benchmark only.
find_package(GSL REQUIRED)
target_link_libraries(bench_quadinf PRIVATE GSL::gsl)
