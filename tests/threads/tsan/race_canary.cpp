// A deliberate data race between the threads of an OpenMP team, for the test that shows this build's
// ThreadSanitizer and Archer report races at all: the threads' unsynchronised additions to one counter.
#include <cstdio>

int main() {
  long counter = 0;
#pragma omp parallel num_threads(2)
  for (int i = 0; i < 1000; ++i) counter = counter + 1;
  std::printf("%ld\n", counter);
  return 0;
}
