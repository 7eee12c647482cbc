// The option store of a solver family: three save areas that live across calls.
//
//   LWSAV (64-bit logicals)  1: the next option-setting call is the first since initialisation (it prints
//                               the header); 2: the next parsed line first puts the marker into every
//                               parameter; 3: listing is on (option lines are echoed, errors printed).
//   IWSAV (64-bit integers)  1..30: the first block of integer parameters; 31..60: the second block, also
//                               addressed as IPRMLS(1..30); 61: the advisory unit the family prints on.
//   RWSAV (doubles)          1..30, 31..60: the two blocks of real parameters, the second also RPRMLS(1..30).
//
// Every parameter holds the marker -11111 (-11111.0) until it is set; the solver replaces the marker, and any
// value outside its range, by the default when it starts, in a copy, so a value set by the caller is never
// overwritten. A family's named parameters are a generated view over the same areas
// (vek::optim::<family>::Store).
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>

namespace vek::optim {

inline constexpr int64_t kMarker = -11111;
inline constexpr double kRealMarker = -11111.0;
inline constexpr int64_t kBlockLength = 30;
inline constexpr int64_t kLwsavLength = 3;
inline constexpr int64_t kIwsavLength = 2 * kBlockLength + 1;
inline constexpr int64_t kRwsavLength = 2 * kBlockLength;

// The three areas held by value: the library-global store of an option-setting routine, or the copy a
// solver fills in at start.
struct SaveAreas {
  std::array<int64_t, kLwsavLength> lwsav{};
  std::array<int64_t, kIwsavLength> iwsav{};
  std::array<double, kRwsavLength> rwsav{};
};

// A view over the three areas of one family.
class Areas {
 public:
  Areas(int64_t* lwsav, int64_t* iwsav, double* rwsav) : lwsav_(lwsav), iwsav_(iwsav), rwsav_(rwsav) {}
  explicit Areas(SaveAreas& a) : Areas(a.lwsav.data(), a.iwsav.data(), a.rwsav.data()) {}

  bool first_call() const { return flag(0); }
  void set_first_call(bool on) const { set_flag(0, on); }
  bool reset_pending() const { return flag(1); }
  void set_reset_pending(bool on) const { set_flag(1, on); }
  bool listing() const { return flag(2); }
  void set_listing(bool on) const { set_flag(2, on); }
  int64_t& advisory_unit() const { return iwsav_[2 * kBlockLength]; }

  // IWSAV(element), RWSAV(element), element 1..60.
  int64_t& iwsav(int64_t element) const { return iwsav_[element - 1]; }
  double& rwsav(int64_t element) const { return rwsav_[element - 1]; }
  // IPRMLS and RPRMLS: the second blocks.
  std::span<int64_t, kBlockLength> iprmls() const { return std::span<int64_t, kBlockLength>(iwsav_ + kBlockLength, kBlockLength); }
  std::span<double, kBlockLength> rprmls() const { return std::span<double, kBlockLength>(rwsav_ + kBlockLength, kBlockLength); }

  // Puts the marker into all four parameter blocks.
  void reset() const;
  // The three areas copied.
  SaveAreas copy() const;

 private:
  bool flag(int k) const { return (lwsav_[k] & 1) != 0; }
  void set_flag(int k, bool on) const { lwsav_[k] = on ? 1 : 0; }

  int64_t* lwsav_;
  int64_t* iwsav_;
  double* rwsav_;
};

// The store as the family's initialiser leaves it: every parameter unset and a reset pending, the header
// due, listing on, the advisory unit the current one. The kernel of E04WBF, and of every library-global store.
void initialise(Areas a);

// Areas held by value as the initialiser leaves them: a family's library-global store starts from these.
SaveAreas initialised_areas();

// What a solver runs on: a copy of the stored areas with a pending reset applied, so that the store itself
// keeps what the caller set.
SaveAreas copy_for_start(Areas stored);

// A solver's start for a family (its generated Store, Inputs, apply_defaults and list_parameters): the copy
// with every unset or out-of-range parameter given its default, listed on `sink` when the print level in
// force is positive.
template <class Store, class Inputs, class Sink>
SaveAreas start_of_family(Areas stored, const Inputs& in, int64_t& (Store::*print_level)() const, const Sink& sink) {
  SaveAreas copy = copy_for_start(stored);
  const Store s(copy);
  apply_defaults(s, in);
  if ((s.*print_level)() > 0) list_parameters(s, in, sink);
  return copy;
}

// An integer computed by a start rule (128 bits wide) as a parameter holds it: saturated to 64 bits.
constexpr int64_t saturate(__int128 v) {
  constexpr __int128 lo = std::numeric_limits<int64_t>::min(), hi = std::numeric_limits<int64_t>::max();
  return static_cast<int64_t>(v < lo ? lo : v > hi ? hi : v);
}

}  // namespace vek::optim
