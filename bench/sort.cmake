# The baseline of bench_sort besides std::sort: Highway's vectorised quicksort (Debian's libhwy-dev), linked
# into the benchmark only, never into the library.
find_package(PkgConfig REQUIRED)
pkg_check_modules(VEK_HWY_CONTRIB REQUIRED IMPORTED_TARGET libhwy-contrib)
target_link_libraries(bench_sort PRIVATE PkgConfig::VEK_HWY_CONTRIB)
