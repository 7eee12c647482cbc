// The skeleton shared by the s-chapter function routines' workers: clear the error state, pass the licence
// gate, then evaluate. A refused call returns 0.
#pragma once

#include <cstdint>

#include "frame/error_buffer.h"

namespace vek::specfun {

// For a worker with no failure of its own: the value of f() (zero when the licence is refused).
template <class F>
auto licensed_value(const char* worker, char* errbuf, int64_t errbuf_len, int64_t* ierr, F f) -> decltype(f()) {
  frame::ErrorBuffer err(errbuf, errbuf_len, ierr);
  if (!err.licensed(worker)) return {};
  return f();
}

}  // namespace vek::specfun
