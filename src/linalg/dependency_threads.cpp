// The thread queries of the dependency. When the OpenBLAS archive is renamed (openblas.cmake), its calls of
// the OpenMP runtime's omp_get_max_threads and omp_set_num_threads are redirected here: OpenBLAS then always
// runs on the thread that calls it and never changes the caller's thread setting. Its sums are therefore cut
// the same way whatever the thread count; the library's own parallel regions (the tiled level-3 routines,
// the LU factorisation) share the work among the threads x06aaf sets.
extern "C" {

int vek_dependency_max_threads(void) { return 1; }

void vek_dependency_set_threads(int) {}

}  // extern "C"
