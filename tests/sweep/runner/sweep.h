// The hostile-input sweep: calls built from the routine table, prepared in guarded storage, run in forked
// children, judged against the declaration.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sweep_table.h"

namespace sweep {

// Contents of an array argument.
enum Fill : int { fill_base = 0, fill_nan, fill_inf, fill_minus_inf, fill_first_nan, fill_max, fill_denormal,
                  fill_minus_one, fill_zero, fill_int_max, fill_int_min, fill_count };
const char* fill_name(int fill);

// What the user functions do during a call.
enum CallbackMode : int { cb_plain = 0, cb_nan, cb_inf, cb_minus_inf, cb_nan_later, cb_inconsistent, cb_count };
const char* callback_mode_name(int mode);

struct ArgValue {
  int64_t i = 0;
  double re = 0, im = 0;
  std::string text;      // a character scalar's text (its hidden length is text.size())
  int64_t hidden = 0;    // the hidden length of a character argument
  int fill = fill_base;
};

struct Case {
  std::vector<ArgValue> v;
  int64_t ifail = 1;
  int callback_mode = cb_plain;
  std::string varied;  // which argument this call makes hostile
};

// Elements of an array whose length is not declared: every call of such a routine keeps its integer
// arguments within [-2, 4] (or its baseline workspace size), where this many elements always suffice.
constexpr int64_t unknown_length_elements = 2048;
// The most elements an argument may have for a call to be made at all.
constexpr int64_t largest_array = int64_t{1} << 20;

bool has_unknown_lengths(const RoutineDesc& d);
std::vector<Len> scalar_lengths(const RoutineDesc& d, const Case& c);
// The elements of argument k for this call (scalars: 1), or -1 when the declared length exceeds largest_array.
int64_t elements(const RoutineDesc& d, const Case& c, int k);
bool legitimate(const RoutineDesc& d, const Case& c);
Case baseline_case(const RoutineDesc& d);
// A routine's calls: the baseline and each hostile variation, sampled evenly down to `most` (half that where
// only small sizes can be tried); most = 0 keeps them all (the long run).
constexpr std::size_t kSampledCalls = 60;
std::vector<Case> build_cases(const RoutineDesc& d, std::size_t most);
std::string describe(const RoutineDesc& d, const Case& c);

// One failure found by a call.
struct Finding {
  std::string kind;   // crash hang sanitizer exit in-write ifail info flag leak alloc print
  std::string detail;
};

// What one call did besides its findings.
struct CallOutcome {
  int64_t ifail = 0;
  int64_t allocations = 0;  // operator new calls made by the routine
  int64_t live = 0;         // blocks it left allocated
};

// Prepares the storage of a call, runs it, checks what the declaration promises. fail_at > 0 makes the
// routine's fail_at-th allocation fail.
std::vector<Finding> run_case(const RoutineDesc& d, const Case& c, int64_t fail_at = 0, CallOutcome* out = nullptr);

// The user function behaviour of the current call.
void set_callback_mode(int mode, const std::vector<Len>* scalars);

// Allocation counting (alloc_count.cpp): the n-th operator new from now on fails (0: none).
void fail_allocation_at(int64_t n);
int64_t allocations_made();
int64_t allocations_live();

// Runs routines with planted faults through the sweep; 0 when each is caught as what it does.
int self_test(int timeout_seconds);

}  // namespace sweep
