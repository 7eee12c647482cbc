// Thread control: the runtime calls behind vek::threads and the workers of the X06 routines.
#include "frame/threads.h"

#include "frame/error_buffer.h"
#include "layers/x06.h"

#ifdef _OPENMP
#include <omp.h>
#endif

namespace vek::threads {

#ifdef _OPENMP
int64_t team_size() { return omp_get_num_threads(); }
int64_t thread_num() { return omp_get_thread_num(); }
int64_t max_threads() { return omp_get_max_threads(); }
bool in_parallel() { return omp_in_parallel() != 0; }
void set_num_threads(int64_t num) { omp_set_num_threads(static_cast<int>(static_cast<uint32_t>(num))); }
void set_nested(bool on) { omp_set_nested(on ? 1 : 0); }
bool nested() { return (omp_get_nested() & 1) != 0; }
#else
int64_t team_size() { return 1; }
int64_t thread_num() { return 0; }
int64_t max_threads() { return 1; }
bool in_parallel() { return false; }
void set_num_threads(int64_t) {}
void set_nested(bool) {}
bool nested() { return false; }
#endif

}  // namespace vek::threads

namespace vek::routines {

// The thread count for later parallel regions (NUM >= 1 has been checked).
void x06aaf::run(frame::ErrorBuffer&, const int64_t* num) { threads::set_num_threads(*num); }

}  // namespace vek::routines

extern "C" {

int64_t x06abfn_() { return vek::threads::team_size(); }
int64_t x06acfn_() { return vek::threads::max_threads(); }
int64_t x06adfn_() { return vek::threads::thread_num(); }
int64_t x06affn_() { return vek::threads::in_parallel() ? 1 : 0; }
// Any set bit enables nesting: the whole word is tested, not only the lowest bit of a logical.
void x06agfn_(const int64_t* nesting) { vek::threads::set_nested(*nesting != 0); }
int64_t x06ahfn_() { return vek::threads::nested() ? 1 : 0; }

}  // extern "C"
