# The baseline of bench_ode: GSL's ODE drivers (Debian's libgsl-dev), linked into this benchmark only. The
# integrator measured is the library's header-only kernel, reached through the source tree.
find_package(GSL REQUIRED)
target_link_libraries(bench_ode PRIVATE GSL::gsl)
target_include_directories(bench_ode PRIVATE ${PROJECT_SOURCE_DIR}/src)
