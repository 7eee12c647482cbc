// Bodies of G05KHF, G05KJF, G05SAF and G05SKF (the declared checks have passed). Each validates STATE before
// touching it; a STATE that fails leaves the routine with STATE as it was.
#include <cmath>
#include <optional>
#include <span>

#include "layers/g05.h"
#include "random/generator.h"
#include "random/inverse_normal.h"

namespace vek::routines {
namespace {

std::span<double> out_span(double* x, int64_t n) { return {x, static_cast<size_t>(n)}; }

}  // namespace

void g05khf::run(frame::ErrorBuffer& err, const int64_t* n, const int64_t* k, int64_t* state) {
  random::StateStatus status;
  const auto stream = random::Stream::open(state, status);
  if (!stream) return err.fail(state_bad);
  if (!stream->can_leapfrog() || !stream->leapfrog(*n, *k)) return err.fail(no_leapfrog);
}

void g05kjf::run(frame::ErrorBuffer& err, const int64_t* n, int64_t* state) {
  random::StateStatus status;
  const auto stream = random::Stream::open(state, status);
  if (!stream) return err.fail(state_bad);
  switch (stream->skip(static_cast<uint64_t>(*n))) {
    case random::SkipStatus::ok: return;
    case random::SkipStatus::refused: return err.fail(no_skip);
    case random::SkipStatus::state_too_short: return err.fail(mt_short);
  }
}

void g05saf::run(frame::ErrorBuffer& err, const int64_t* n, int64_t* state, double* x) {
  random::StateStatus status;
  const auto stream = random::Stream::open(state, status);
  if (!stream) return status == random::StateStatus::bad_length ? err.fail(state_length) : err.fail(state_bad);
  stream->uniforms(out_span(x, *n));
}

void g05skf::run(frame::ErrorBuffer& err, const int64_t* n, const double* xmu, const double* var, int64_t* state,
                 double* x) {
  if (*n == 0) return;
  random::StateStatus status;
  const auto stream = random::Stream::open(state, status);
  if (!stream) return status == random::StateStatus::bad_length ? err.fail(state_length) : err.fail(state_bad);
  const std::span<double> out = out_span(x, *n);
  stream->uniforms(out);
  random::normal_from_uniforms(out, *xmu, std::sqrt(*var));
}

}  // namespace vek::routines
