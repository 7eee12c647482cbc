// The library's view of the threading runtime: team size, thread number, thread limit and whether a parallel
// region is active. Parallel kernels ask here, so that a build without OpenMP answers as a team of one.
#pragma once

#include <cstdint>

namespace vek::threads {

int64_t team_size();    // threads in the caller's current team; 1 outside a parallel region
int64_t thread_num();   // the caller's number in its team; 0 for the master
int64_t max_threads();  // the team a parallel region started now would get
bool in_parallel();     // inside an active parallel region

void set_num_threads(int64_t num);  // num >= 1; passed on as its low 32 bits
void set_nested(bool on);
bool nested();

}  // namespace vek::threads
