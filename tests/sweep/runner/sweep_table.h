// The routine table of the hostile-input sweep, generated from the declarations (tools/decl/emit_sweep.py),
// and the pieces the generated thunks and user functions call back into.
#pragma once

#include <cstddef>
#include <cstdint>

namespace sweep {

// An array length in saturating 128-bit arithmetic: a declared length over hostile integers (2^62 * 2^62,
// INT64_MIN - 1) gives a huge value instead of overflowing, which the runner then refuses to allocate.
struct Len {
  static constexpr __int128 limit = static_cast<__int128>(1) << 120;
  __int128 v;
  constexpr Len(__int128 x = 0) : v(x > limit ? limit : (x < -limit ? -limit : x)) {}
  friend constexpr Len operator+(Len a, Len b) { return Len(a.v + b.v); }
  friend constexpr Len operator-(Len a, Len b) { return Len(a.v - b.v); }
  friend constexpr Len operator-(Len a) { return Len(-a.v); }
  friend constexpr Len operator*(Len a, Len b) {
    __int128 r;
    if (__builtin_mul_overflow(a.v, b.v, &r)) return Len((a.v < 0) != (b.v < 0) ? -limit : limit);
    return Len(r);
  }
  friend constexpr Len operator/(Len a, Len b) { return b.v == 0 ? Len(0) : Len(a.v / b.v); }
  friend constexpr Len operator%(Len a, Len b) { return b.v == 0 ? Len(0) : Len(a.v % b.v); }
  friend constexpr bool operator<(Len a, Len b) { return a.v < b.v; }
  friend constexpr bool operator>(Len a, Len b) { return a.v > b.v; }
  friend constexpr bool operator<=(Len a, Len b) { return a.v <= b.v; }
  friend constexpr bool operator>=(Len a, Len b) { return a.v >= b.v; }
  friend constexpr bool operator==(Len a, Len b) { return a.v == b.v; }
  friend constexpr bool operator!=(Len a, Len b) { return a.v != b.v; }
};
constexpr Len lmax(Len a, Len b) { return a.v < b.v ? b : a; }
constexpr Len lmin(Len a, Len b) { return a.v < b.v ? a : b; }
constexpr Len labs(Len a) { return a.v < 0 ? Len(-a.v) : a; }

using LenFn = Len (*)(const Len* scalars);

// Shapes of an argument.
enum Shape : int { scalar = 0, known_length = 1, unknown_length = 2, callback = 3, user_workspace = 4 };

struct ArgDesc {
  const char* name;
  char intent;      // 'i' in, 'o' out, 'b' inout
  char base;        // I int, L logical, R real, S single, Z complex, C scomplex, H char, F user function
  int shape;
  LenFn length;     // known_length: the declared length over the integer scalars
  const char* length_text;
  long long base_int;   // baseline of a scalar (passes the declared checks)
  double base_real;
  const char* base_text;
  const char* letters;  // the option letters the checks accept
};

struct CallbackDesc {
  const char* name;
  char returns;  // V none, R real, L logical, I int
  const ArgDesc* params;
  int nparams;
};

struct CallResult {
  double real = 0, imag = 0;
  int64_t integer = 0;
};

// The addresses of one call, as the thunk passes them to the entry.
struct Call {
  void* p[64] = {};
  int64_t hidden[64] = {};  // hidden character lengths, by argument position
  int64_t* ifail = nullptr;
  CallResult result;
};

struct RoutineDesc {
  const char* name;
  const char* chapter;
  const char* published;  // the published LAPACK/BLAS name, if any
  int ifail;              // 0 none, 1 standard, 2 two-digit
  char returns;
  const ArgDesc* args;
  int nargs;
  const int64_t* ifails;  // the IFAIL values of the declared messages
  int nifails;
  int info;               // position of INFO, or -1
  void (*call)(Call&);
  const char* flag;
  int has_checks;
};

extern const RoutineDesc routine_table[];
extern const std::size_t routine_count;
extern const char* const internal_routines;

// The user functions of the table call this with their arguments' addresses; the runner decides what they
// compute (callback_mode).
CallResult callback_act(const CallbackDesc& d, void** params);
inline CallResult callback_result(const CallResult& r) { return r; }

}  // namespace sweep
