// The hostile calls of a routine: its baseline (scalars passing the declared checks), then one argument at a
// time made hostile, keeping only calls whose declared array lengths the runner can honour.
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "sweep.h"

namespace sweep {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr int64_t huge = int64_t{1} << 40;

bool is_array(const ArgDesc& a) {
  return a.shape == known_length || a.shape == unknown_length || a.shape == user_workspace;
}

bool is_option(const ArgDesc& a) {
  return a.letters[0] != '\0' || (std::strlen(a.base_text) == 1 && a.base_text[0] != 0);
}

std::vector<int64_t> hostile_ints(const RoutineDesc& d) {
  if (has_unknown_lengths(d)) return {-1, 0, 1, 2, 4, -2};
  return {-1, 0, 1, 2, huge, -huge, std::numeric_limits<int64_t>::max(), std::numeric_limits<int64_t>::min()};
}

std::vector<std::pair<double, double>> hostile_reals(char base) {
  if (base == 'S' || base == 'C')
    return {{nan, 0}, {inf, 0}, {-inf, 0}, {-0.0, 0}, {FLT_MAX, FLT_MAX}, {1e-45, 1e-45}, {0, nan}};
  return {{nan, 0}, {inf, 0}, {-inf, 0}, {0.0, 0}, {-0.0, -0.0}, {DBL_MAX, DBL_MAX}, {-DBL_MAX, 0},
          {4.9e-324, 4.9e-324}, {-1.0, 0}, {0, nan}, {0, inf}};
}

std::vector<std::string> hostile_texts(const ArgDesc& a) {
  std::vector<std::string> out;
  if (is_option(a)) {
    for (const char* l = a.letters; *l; ++l) out.push_back(std::string(1, static_cast<char>(std::tolower(*l))));
    if (a.letters[0] == '\0')
      for (const char* l : {"N", "T", "C", "U", "L", "V", "A", "I", "S", "n", "t", "c", "u", "l", "v"})
        out.emplace_back(l);
    out.emplace_back("?");
    out.emplace_back(" ");
  }
  out.emplace_back("");
  out.push_back(std::string(300, is_option(a) ? a.base_text[0] : 'A'));
  out.push_back(std::string("\x01\xff\0 x", 5));
  return out;
}

}  // namespace

bool has_unknown_lengths(const RoutineDesc& d) {
  for (int k = 0; k < d.nargs; ++k)
    if (d.args[k].shape == unknown_length) return true;
  return false;
}

std::vector<Len> scalar_lengths(const RoutineDesc& d, const Case& c) {
  std::vector<Len> s(d.nargs);
  for (int k = 0; k < d.nargs; ++k)
    if (d.args[k].shape == scalar) s[k] = Len(c.v[k].i);
  return s;
}

int64_t elements(const RoutineDesc& d, const Case& c, int k) {
  const ArgDesc& a = d.args[k];
  switch (a.shape) {
    case known_length: {
      auto s = scalar_lengths(d, c);
      Len n = a.length(s.data());
      if (n.v < 0) return 0;
      return n.v > largest_array ? -1 : static_cast<int64_t>(n.v);
    }
    case unknown_length: return unknown_length_elements;
    case user_workspace: return 16;
    default: return 1;
  }
}

bool legitimate(const RoutineDesc& d, const Case& c) {
  for (int k = 0; k < d.nargs; ++k) {
    if (elements(d, c, k) < 0) return false;
    // A character array of records: the records times their hidden length.
    if (is_array(d.args[k]) && d.args[k].base == 'H' && elements(d, c, k) * c.v[k].hidden > largest_array) return false;
  }
  return true;
}

Case baseline_case(const RoutineDesc& d) {
  Case c;
  c.v.resize(d.nargs);
  for (int k = 0; k < d.nargs; ++k) {
    const ArgDesc& a = d.args[k];
    ArgValue& v = c.v[k];
    v.i = a.base_int;
    v.re = a.base_real;
    if (a.base == 'H') {
      v.text = a.base_text;
      v.hidden = is_array(a) ? 8 : (a.intent == 'o' ? 80 : static_cast<int64_t>(v.text.size()));
    }
  }
  c.varied = "baseline";
  return c;
}

std::vector<Case> build_cases(const RoutineDesc& d, std::size_t most) {
  const Case base = baseline_case(d);
  std::vector<Case> out;
  auto add = [&](Case c, std::string what) {
    c.varied = std::move(what);
    if (legitimate(d, c)) out.push_back(std::move(c));
  };
  add(base, "baseline");
  for (int k = 0; k < d.nargs; ++k) {
    const ArgDesc& a = d.args[k];
    std::string name = a.name;
    if (a.shape == scalar && (a.base == 'I' || a.base == 'L')) {
      for (int64_t x : a.base == 'L' ? std::vector<int64_t>{0, 1, 2, -1} : hostile_ints(d)) {
        Case c = base;
        c.v[k].i = x;
        if (legitimate(d, c)) {
          add(c, name);
          continue;
        }
        // A huge count is legitimate where another integer makes the arrays it sizes empty (LDA 2^40, N 0).
        for (int j = 0; j < d.nargs; ++j) {
          if (j == k || d.args[j].shape != scalar || d.args[j].base != 'I') continue;
          Case z = c;
          z.v[j].i = 0;
          if (legitimate(d, z)) {
            add(z, name + " with " + d.args[j].name + " = 0");
            break;
          }
        }
      }
    } else if (a.shape == scalar && a.base != 'H' && a.intent != 'o') {
      for (auto [re, im] : hostile_reals(a.base)) {
        Case c = base;
        c.v[k].re = re;
        c.v[k].im = im;
        add(c, name);
      }
    } else if (a.shape == scalar && a.base == 'H') {
      if (a.intent == 'o') {
        for (int64_t h : {0, 1, 300}) {
          Case c = base;
          c.v[k].hidden = h;
          add(c, name);
        }
      } else {
        for (const std::string& t : hostile_texts(a)) {
          Case c = base;
          c.v[k].text = t;
          c.v[k].hidden = static_cast<int64_t>(t.size());
          add(c, name);
        }
      }
    } else if (is_array(a) && a.shape != user_workspace && a.base == 'H') {
      for (int64_t h : {0, 1, 300}) {
        Case c = base;
        c.v[k].hidden = h;
        add(c, name);
      }
    } else if (is_array(a) && a.shape != user_workspace && a.intent != 'o') {
      std::vector<int> fills;
      if (a.base == 'I' || a.base == 'L') {
        if (a.shape == known_length) fills = {fill_minus_one, fill_zero, fill_int_max, fill_int_min};
      } else if (most == 0) {
        fills = {fill_nan, fill_inf, fill_minus_inf, fill_first_nan, fill_max, fill_denormal, fill_zero};
      } else {
        fills = {fill_nan, fill_inf, fill_first_nan, fill_max};
      }
      for (int f : fills) {
        Case c = base;
        c.v[k].fill = f;
        add(c, name);
      }
    } else if (a.shape == callback) {
      for (int m = cb_nan; m < cb_count; ++m) {
        Case c = base;
        c.callback_mode = m;
        add(c, name);
      }
    }
  }
  if (d.ifail) {
    // The failure modes: every third call soft and printed, every third hard (run in a child of its own).
    const int64_t modes[] = {1, -1, 0};
    const int64_t two_digit[] = {1, 11, 10};
    const int64_t* cycle = d.ifail == 2 ? two_digit : modes;
    for (std::size_t n = 0; n < out.size(); ++n) out[n].ifail = cycle[n % 3];
    for (int64_t f : {int64_t{-1}, int64_t{0}, int64_t{5}}) {
      Case c = base;
      c.ifail = f;
      add(c, "IFAIL");
    }
  }
  if (has_unknown_lengths(d)) most /= 2;
  if (most > 0 && out.size() > most) {
    std::vector<Case> sample;
    for (std::size_t n = 0; n < most; ++n) sample.push_back(out[n * out.size() / most]);
    out = std::move(sample);
  }
  return out;
}

const char* fill_name(int fill) {
  static const char* names[] = {"baseline", "NaN", "+Inf", "-Inf", "first NaN", "DBL_MAX", "denormal",
                                "-1", "0", "INT64_MAX", "INT64_MIN"};
  return names[fill];
}

const char* callback_mode_name(int mode) {
  static const char* names[] = {"plain", "returns NaN", "returns +Inf", "returns -Inf", "NaN from its 4th call",
                                "inconsistent"};
  return names[mode];
}

std::string describe(const RoutineDesc& d, const Case& c) {
  std::ostringstream o;
  o.precision(17);
  o << d.name << (d.published[0] ? std::string(" (") + d.published + ")" : std::string()) << "(";
  for (int k = 0; k < d.nargs; ++k) {
    const ArgDesc& a = d.args[k];
    const ArgValue& v = c.v[k];
    o << (k ? ", " : "") << a.name << "=";
    if (a.shape == callback) {
      o << "user function " << callback_mode_name(c.callback_mode);
    } else if (a.shape != scalar) {
      o << a.base << "[" << elements(d, c, k) << "]";
      if (a.base == 'H') o << "*" << v.hidden;
      if (a.intent != 'o') o << " " << fill_name(v.fill);
    } else if (a.base == 'H') {
      o << "'";
      for (char ch : v.text.substr(0, 12)) {
        if (ch >= 32 && ch < 127) o << ch;
        else o << "\\x" << std::hex << (static_cast<unsigned>(ch) & 0xff) << std::dec;
      }
      o << (v.text.size() > 12 ? "..." : "") << "'(len " << v.hidden << ")";
    } else if (a.base == 'I' || a.base == 'L') {
      o << v.i;
    } else if (a.base == 'Z' || a.base == 'C') {
      o << "(" << v.re << "," << v.im << ")";
    } else {
      o << v.re;
    }
  }
  if (d.ifail) o << ", IFAIL=" << c.ifail;
  o << ")";
  return o.str();
}

}  // namespace sweep
