// Bodies of G01EMF and G01FMF (Studentized range probability and deviate); the declared checks have passed.
#include "layers/g01.h"
#include "stats/studentized_range.h"

namespace vek::routines {

double g01emf::run(frame::ErrorBuffer&, const double* q, const double* v, const int64_t* ir) {
  return stats::studentized_range(*q, *v, static_cast<int>(*ir)).lower;
}

double g01fmf::run(frame::ErrorBuffer&, const double* p, const double* v, const int64_t* ir) {
  return stats::studentized_range_deviate(*p, *v, static_cast<int>(*ir));
}

}  // namespace vek::routines
