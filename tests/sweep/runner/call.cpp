// One call: every argument in storage of its own whose end is guarded (the sanitizer's redzone, or in the
// release build a PROT_NONE page right after the last element), the `in` arguments copied before the call and
// compared after it, IFAIL, INFO and the flag judged against the declaration.
#include <sys/mman.h>
#include <unistd.h>

#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "fault_site.h"
#include "sweep.h"

#if defined(__SANITIZE_ADDRESS__)
#define SWEEP_ASAN 1
#endif

namespace sweep {
namespace {

constexpr int64_t info_sentinel = std::numeric_limits<int64_t>::min() + 20260;
constexpr unsigned char out_pattern = 0xA5;

// Storage whose first byte past the end faults.
class Guarded {
 public:
  explicit Guarded(std::size_t bytes) : bytes_(bytes) {
#ifdef SWEEP_ASAN
    data_ = static_cast<unsigned char*>(std::malloc(bytes ? bytes : 1));
    if (!bytes) data_ += 1;  // one past a one-byte block: any access is reported
#else
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t body = (bytes + page - 1) / page * page;
    map_len_ = body + page;
    void* m = mmap(nullptr, map_len_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m == MAP_FAILED) std::abort();
    base_ = static_cast<unsigned char*>(m);
    mprotect(base_ + body, page, PROT_NONE);
    data_ = base_ + body - bytes;
#endif
  }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
  ~Guarded() {
#ifdef SWEEP_ASAN
    std::free(bytes_ ? data_ : data_ - 1);
#else
    munmap(base_, map_len_);
#endif
  }
  unsigned char* data() { return data_; }
  std::size_t bytes() const { return bytes_; }

 private:
  std::size_t bytes_;
  unsigned char* data_ = nullptr;
#ifndef SWEEP_ASAN
  unsigned char* base_ = nullptr;
  std::size_t map_len_ = 0;
#endif
};

std::size_t element_bytes(char base) {
  switch (base) {
    case 'S': return 4;
    case 'Z': return 16;
    case 'C': return 8;
    default: return 8;
  }
}

double real_fill(int fill, int64_t i) {
  switch (fill) {
    case fill_nan: return std::numeric_limits<double>::quiet_NaN();
    case fill_inf: return std::numeric_limits<double>::infinity();
    case fill_minus_inf: return -std::numeric_limits<double>::infinity();
    case fill_first_nan: return i == 0 ? std::numeric_limits<double>::quiet_NaN() : 0.5 + ((i * 37) % 11) / 8.0;
    case fill_max: return std::numeric_limits<double>::max();
    case fill_denormal: return 4.9e-324 * static_cast<double>(i % 5 + 1);
    case fill_zero: return 0.0;
    default: return 0.5 + ((i * 37) % 11) / 8.0;
  }
}

int64_t int_fill(int fill, int64_t i) {
  switch (fill) {
    case fill_minus_one: return -1;
    case fill_zero: return 0;
    case fill_int_max: return std::numeric_limits<int64_t>::max();
    case fill_int_min: return std::numeric_limits<int64_t>::min();
    default: return i + 1;  // identity pivots and permutations: valid for any order up to the length
  }
}

void fill_array(const ArgDesc& a, const ArgValue& v, unsigned char* p, int64_t n) {
  if (a.intent == 'o') {
    std::memset(p, out_pattern, static_cast<std::size_t>(n) * (a.base == 'H' ? v.hidden : element_bytes(a.base)));
    return;
  }
  for (int64_t i = 0; i < n; ++i) {
    switch (a.base) {
      case 'I':
      case 'L': reinterpret_cast<int64_t*>(p)[i] = int_fill(v.fill, i); break;
      case 'R': reinterpret_cast<double*>(p)[i] = real_fill(v.fill, i); break;
      case 'S': reinterpret_cast<float*>(p)[i] = static_cast<float>(real_fill(v.fill, i)); break;
      case 'Z':
        reinterpret_cast<double*>(p)[2 * i] = real_fill(v.fill, i);
        reinterpret_cast<double*>(p)[2 * i + 1] = 0.25 * real_fill(v.fill, i + 3);
        break;
      case 'C':
        reinterpret_cast<float*>(p)[2 * i] = static_cast<float>(real_fill(v.fill, i));
        reinterpret_cast<float*>(p)[2 * i + 1] = static_cast<float>(0.25 * real_fill(v.fill, i + 3));
        break;
      case 'H':
        for (int64_t j = 0; j < v.hidden; ++j) p[i * v.hidden + j] = static_cast<unsigned char>('A' + (i + j) % 26);
        break;
    }
  }
}

void fill_scalar(const ArgDesc& a, const ArgValue& v, unsigned char* p) {
  if (a.intent == 'o' && a.base != 'H') {
    std::memset(p, out_pattern, element_bytes(a.base));
    return;
  }
  switch (a.base) {
    case 'I':
    case 'L': *reinterpret_cast<int64_t*>(p) = v.i; break;
    case 'R': *reinterpret_cast<double*>(p) = v.re; break;
    case 'S': *reinterpret_cast<float*>(p) = static_cast<float>(v.re); break;
    case 'Z':
      reinterpret_cast<double*>(p)[0] = v.re;
      reinterpret_cast<double*>(p)[1] = v.im;
      break;
    case 'C':
      reinterpret_cast<float*>(p)[0] = static_cast<float>(v.re);
      reinterpret_cast<float*>(p)[1] = static_cast<float>(v.im);
      break;
    case 'H':
      if (a.intent == 'o') std::memset(p, out_pattern, static_cast<std::size_t>(v.hidden));
      else std::memcpy(p, v.text.data(), v.text.size());
      break;
  }
}

bool declared_ifail(const RoutineDesc& d, int64_t ifail) {
  if (ifail == 0 || ifail == -99 || ifail == -399 || ifail == -999) return true;
  for (int k = 0; k < d.nifails; ++k)
    if (d.ifails[k] == ifail) return true;
  return false;
}

}  // namespace

std::vector<Finding> run_case(const RoutineDesc& d, const Case& c, int64_t fail_at, CallOutcome* out) {
  std::vector<Finding> found;
  std::vector<Len> scalars = scalar_lengths(d, c);
  std::vector<std::unique_ptr<Guarded>> store;
  std::vector<std::string> before(d.nargs);
  Call call;
  forget_arrays();
  for (int k = 0; k < d.nargs; ++k) {
    const ArgDesc& a = d.args[k];
    const ArgValue& v = c.v[k];
    if (a.shape == callback) continue;
    const int64_t n = elements(d, c, k);
    std::size_t bytes = a.base == 'H' ? static_cast<std::size_t>(n * v.hidden)
                                      : static_cast<std::size_t>(n) * element_bytes(a.base);
    store.push_back(std::make_unique<Guarded>(bytes));
    unsigned char* p = store.back()->data();
    note_array(a.name, p, bytes);
    if (a.shape == scalar) fill_scalar(a, v, p);
    else fill_array(a, v, p, n);
    if (k == d.info) *reinterpret_cast<int64_t*>(p) = info_sentinel;
    call.p[k] = p;
    call.hidden[k] = v.hidden;
    if (a.intent == 'i') before[k].assign(reinterpret_cast<const char*>(p), bytes);
  }
  store.push_back(std::make_unique<Guarded>(sizeof(int64_t)));
  call.ifail = reinterpret_cast<int64_t*>(store.back()->data());
  *call.ifail = c.ifail;

  set_callback_mode(c.callback_mode, &scalars);
  std::fesetenv(FE_DFL_ENV);
  const int64_t made = allocations_made(), live = allocations_live();
  fail_allocation_at(fail_at);
  d.call(call);
  fail_allocation_at(0);
  if (out) *out = {d.ifail ? *call.ifail : 0, allocations_made() - made, allocations_live() - live};
  std::fesetenv(FE_DFL_ENV);
  set_callback_mode(cb_plain, nullptr);

  for (int k = 0; k < d.nargs; ++k) {
    if (d.args[k].intent != 'i' || d.args[k].shape == callback) continue;
    const std::string& b = before[k];
    const char* now = static_cast<const char*>(call.p[k]);
    if (std::memcmp(b.data(), now, b.size()) != 0) {
      std::size_t at = 0;
      while (b[at] == now[at]) ++at;
      found.push_back({"in-write", std::string("argument ") + d.args[k].name + " (declared in) changed at byte " +
                                       std::to_string(at)});
    }
  }
  if (d.ifail && !declared_ifail(d, *call.ifail))
    found.push_back({"ifail", "IFAIL = " + std::to_string(*call.ifail) + " is not a declared value"});
  if (d.info >= 0) {
    const int64_t info = *static_cast<int64_t*>(call.p[d.info]);
    if (info == info_sentinel) found.push_back({"info", "INFO was not set"});
    else if (info < -d.nargs) found.push_back({"info", "INFO = " + std::to_string(info) + " names no argument"});
  }
  if (d.flag[0] && d.ifail && *call.ifail != 0) {
    for (int k = 0; k < d.nargs; ++k)
      if (std::strcmp(d.args[k].name, d.flag) == 0 && *static_cast<int64_t*>(call.p[k]) != 0)
        found.push_back({"flag", std::string(d.flag) + " is not 0 on a failure"});
  }
  return found;
}

}  // namespace sweep
