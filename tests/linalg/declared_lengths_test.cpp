// The declared array lengths of the BLAS/LAPACK-named routines are large enough: a sample of routines is
// called with valid arguments and every array exactly as long as its declaration says, each ending at an
// inaccessible page, so that any element touched beyond the declared length stops the test. The declarations
// are read from src/exports and their length expressions evaluated here, independently of the generator.
#include <sys/mman.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "frame/checks.h"

namespace {

struct DeclArg {
  std::string name, base, length;  // length empty for a scalar
};

// Every published routine's arguments in the chapter files, by published name.
std::map<std::string, std::vector<DeclArg>> read_decls() {
  std::map<std::string, std::vector<DeclArg>> out;
  for (const char* chapter : {"f06", "f07", "f08"}) {
    // VEK_TEST_DATA_DIR is tests/linalg/data of the source tree
    const std::filesystem::path root = std::filesystem::path(VEK_TEST_DATA_DIR).parent_path().parent_path().parent_path();
    std::ifstream in(root / "src/exports" / (std::string(chapter) + ".decl"));
    EXPECT_TRUE(in.good()) << chapter;
    std::vector<DeclArg> args;
    std::string line;
    while (std::getline(in, line)) {
      std::istringstream words(line);
      std::string key, name, type;
      words >> key;
      if (key == "routine" || key == "internal") args.clear();
      if (key == "published") {
        words >> name;
        out[name] = args;
      }
      if (key != "in" && key != "out" && key != "inout") continue;
      words >> name;
      std::getline(words, type);
      type = type.substr(type.find_first_not_of(' '));
      const size_t open = type.find('[');
      if (open == std::string::npos) args.push_back({name, type, ""});
      else args.push_back({name, type.substr(0, open), type.substr(open + 1, type.size() - open - 2)});
    }
  }
  return out;
}

// The length language: numbers, integer and option arguments, + - * /, max min abs, NAME in {'A', ...},
// COND ? A : B. Evaluated in 128 bits (the sample's sizes are small).
class Length {
 public:
  Length(const std::string& text, const std::map<std::string, int64_t>& ints,
         const std::map<std::string, char>& letters)
      : s_(text), ints_(ints), letters_(letters) {}
  __int128 value() {
    const __int128 v = choice();
    skip();
    EXPECT_EQ(pos_, s_.size()) << "unread length text: " << s_;
    return v;
  }

 private:
  void skip() {
    while (pos_ < s_.size() && s_[pos_] == ' ') ++pos_;
  }
  bool eat(char c) {
    skip();
    if (pos_ < s_.size() && s_[pos_] == c) return ++pos_, true;
    return false;
  }
  std::string word() {
    skip();
    size_t start = pos_;
    while (pos_ < s_.size() && (std::isalnum(static_cast<unsigned char>(s_[pos_])) || s_[pos_] == '_')) ++pos_;
    return s_.substr(start, pos_ - start);
  }
  __int128 choice() {
    const __int128 test = sum();
    if (!eat('?')) return test;
    const __int128 yes = choice();
    EXPECT_TRUE(eat(':'));
    const __int128 no = choice();
    return test ? yes : no;
  }
  __int128 sum() {
    __int128 v = product();
    for (;;) {
      if (eat('+')) v += product();
      else if (eat('-')) v -= product();
      else return v;
    }
  }
  __int128 product() {
    __int128 v = primary();
    for (;;) {
      if (eat('*')) v *= primary();
      else if (eat('/')) v /= primary();
      else return v;
    }
  }
  __int128 primary() {
    if (eat('(')) {
      const __int128 v = choice();
      EXPECT_TRUE(eat(')'));
      return v;
    }
    if (eat('-')) return -primary();
    const std::string w = word();
    if (!w.empty() && std::isdigit(static_cast<unsigned char>(w[0]))) return std::stoll(w);
    if (w == "max" || w == "min" || w == "abs") {
      EXPECT_TRUE(eat('('));
      const __int128 a = choice();
      if (w == "abs") {
        EXPECT_TRUE(eat(')'));
        return a < 0 ? -a : a;
      }
      EXPECT_TRUE(eat(','));
      const __int128 b = choice();
      EXPECT_TRUE(eat(')'));
      return w == "max" ? (a > b ? a : b) : (a < b ? a : b);
    }
    skip();
    if (s_.compare(pos_, 3, "in ") == 0) {  // NAME in {'A', 'B'}
      pos_ += 3;
      EXPECT_TRUE(eat('{'));
      bool found = false;
      do {
        skip();
        found = found || s_[pos_ + 1] == letters_.at(w);
        pos_ += 3;
      } while (eat(','));
      EXPECT_TRUE(eat('}'));
      return found;
    }
    EXPECT_TRUE(ints_.count(w)) << w << " in " << s_;
    return ints_.count(w) ? ints_.at(w) : 0;
  }

  std::string s_;
  size_t pos_ = 0;
  const std::map<std::string, int64_t>& ints_;
  const std::map<std::string, char>& letters_;
};

// Bytes whose end is the start of an inaccessible page: reading one element past them faults.
class Guarded {
 public:
  explicit Guarded(size_t bytes) {
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    span_ = ((bytes + page - 1) / page + 1) * page;
    base_ = static_cast<char*>(mmap(nullptr, span_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(base_ + span_ - page, page, PROT_NONE);
    data_ = base_ + span_ - page - bytes;
  }
  ~Guarded() { munmap(base_, span_); }
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;
  char* data() const { return data_; }

 private:
  char* base_ = nullptr;
  char* data_ = nullptr;
  size_t span_ = 0;
};

size_t element_bytes(const std::string& base) {
  if (base == "complex") return 16;
  if (base == "single") return 4;
  if (base == "scomplex") return 8;
  return 8;  // int, logical, real
}

// Calls SYMBOL with the K addresses and hidden lengths in WORDS (all passed as 64-bit integer-class words).
template <size_t>
using Word = uintptr_t;

template <size_t... I>
void call_words(void* symbol, const std::vector<uintptr_t>& words, std::index_sequence<I...>) {
  using Fn = void (*)(Word<I>...);
  reinterpret_cast<Fn>(symbol)(words[I]...);
}

template <size_t K>
void call_with(void* symbol, std::vector<uintptr_t> words) {
  words.resize(K, 0);
  call_words(symbol, words, std::make_index_sequence<K>{});
}

struct Case {
  std::string routine;
  std::map<std::string, int64_t> ints;
  std::map<std::string, char> letters;
};

// Calls the routine with every array exactly as long as declared, filled with data that makes a valid
// problem: reals 1/(i+j+1)-like values plus a dominant diagonal, integers 1 (a valid pivot list).
int64_t run_case(const std::map<std::string, std::vector<DeclArg>>& decls, const Case& c) {
  const std::vector<DeclArg>& args = decls.at(c.routine);
  std::vector<std::unique_ptr<Guarded>> arrays;
  std::vector<int64_t> scalars(args.size(), 0);
  std::vector<double> reals(args.size() * 2, 0.0);
  std::vector<char> chars(args.size(), 'N');
  std::vector<uintptr_t> words;
  std::vector<uintptr_t> hidden;
  int64_t info_index = -1;
  for (size_t k = 0; k < args.size(); ++k) {
    const DeclArg& a = args[k];
    if (!a.length.empty()) {
      const __int128 n = Length(a.length, c.ints, c.letters).value();
      const size_t count = n < 0 ? 0 : static_cast<size_t>(n);
      const size_t bytes = count * element_bytes(a.base);
      arrays.push_back(std::make_unique<Guarded>(bytes));
      char* p = arrays.back()->data();
      for (size_t i = 0; i < count; ++i) {
        if (a.base == "int" || a.base == "logical") {
          const int64_t one = 1;
          std::memcpy(p + i * 8, &one, 8);
        } else if (a.base == "real" || a.base == "complex") {
          const double v = 1.0 / static_cast<double>(i % 7 + 1) + (i % 5 == 0 ? 4.0 : 0.0);
          std::memcpy(p + i * element_bytes(a.base), &v, 8);
        }
      }
      words.push_back(reinterpret_cast<uintptr_t>(p));
    } else if (a.base == "char") {
      chars[k] = c.letters.count(a.name) ? c.letters.at(a.name) : 'N';
      words.push_back(reinterpret_cast<uintptr_t>(&chars[k]));
      hidden.push_back(1);
    } else if (a.base == "real" || a.base == "complex") {
      reals[2 * k] = 1.0;
      words.push_back(reinterpret_cast<uintptr_t>(&reals[2 * k]));
    } else {
      scalars[k] = c.ints.count(a.name) ? c.ints.at(a.name) : 0;
      if (a.name == "INFO") info_index = static_cast<int64_t>(k);
      words.push_back(reinterpret_cast<uintptr_t>(&scalars[k]));
    }
  }
  words.insert(words.end(), hidden.begin(), hidden.end());
  void* symbol = dlsym(RTLD_DEFAULT, (c.routine + "_").c_str());
  EXPECT_NE(symbol, nullptr) << c.routine;
  if (symbol == nullptr) return -1000;
  EXPECT_LE(words.size(), 32u);
  call_with<32>(symbol, words);
  return info_index < 0 ? 0 : scalars[static_cast<size_t>(info_index)];
}

// What the generated trace computes from a declared length: saturating, never overflowing, never negative.
TEST(DeclaredLengths, LengthsOfHugeArgumentsSaturate) {
  using vek::frame::Extent;
  using vek::frame::extent_count;
  const int64_t big = std::numeric_limits<int64_t>::max(), low = std::numeric_limits<int64_t>::min();
  EXPECT_EQ(extent_count(Extent(big) * Extent(big) * Extent(big)), big);              // LDA*N*NRHS
  EXPECT_EQ(extent_count(Extent(big) * (Extent(big) + 1) / 2), big);                  // N*(N+1)/2
  EXPECT_EQ(extent_count(1 + (Extent(low) - 1) * vek::frame::check_abs(Extent(low))), 0);  // 1+(N-1)*abs(INCX)
  EXPECT_EQ(extent_count(1 + (Extent(big) - 1) * vek::frame::check_abs(Extent(low))), big);
  EXPECT_EQ(extent_count(Extent(low) * Extent(big) - Extent(big) * Extent(big)), 0);  // negative: nothing
  EXPECT_EQ(extent_count(vek::frame::check_max(Extent(-5), 1)), 1);
  EXPECT_EQ(extent_count(1 + (Extent(4) - 1) * vek::frame::check_abs(Extent(-3))), 10);  // exact when small
}

TEST(DeclaredLengths, SampledRoutinesTouchNothingBeyondTheDeclaredLengths) {
  const auto decls = read_decls();
  ASSERT_GT(decls.size(), 400u);
  const int64_t m = 7, n = 5, k = 4, lw = 400;
  const std::vector<Case> cases = {
      {"dgemm", {{"M", m}, {"N", n}, {"K", k}, {"LDA", m}, {"LDB", k}, {"LDC", m}}, {{"TRANSA", 'N'}, {"TRANSB", 'N'}}},
      {"dgemm", {{"M", m}, {"N", n}, {"K", k}, {"LDA", k}, {"LDB", n}, {"LDC", m}}, {{"TRANSA", 'T'}, {"TRANSB", 'T'}}},
      {"zgemv", {{"M", m}, {"N", n}, {"LDA", m}, {"INCX", -2}, {"INCY", 3}}, {{"TRANS", 'C'}}},
      {"zgemv", {{"M", 3}, {"N", 2}, {"LDA", 3}, {"INCX", 1}, {"INCY", 1}}, {{"TRANS", 'N'}}},
      {"daxpy", {{"N", n}, {"INCX", -3}, {"INCY", 2}}, {}},
      {"dtrsm", {{"M", m}, {"N", n}, {"LDA", n}, {"LDB", m}}, {{"SIDE", 'R'}, {"UPLO", 'U'}, {"TRANSA", 'N'}, {"DIAG", 'N'}}},
      {"dsyr2k", {{"N", n}, {"K", k}, {"LDA", k}, {"LDB", k}, {"LDC", n}}, {{"UPLO", 'L'}, {"TRANS", 'T'}}},
      {"dgetrf", {{"M", m}, {"N", n}, {"LDA", m}}, {}},
      {"dgetrs", {{"N", n}, {"NRHS", 3}, {"LDA", n}, {"LDB", n}}, {{"TRANS", 'N'}}},
      {"dgels", {{"M", m}, {"N", n}, {"NRHS", 2}, {"LDA", m}, {"LDB", m}, {"LWORK", lw}}, {{"TRANS", 'N'}}},
      {"dormqr", {{"M", m}, {"N", n}, {"K", k}, {"LDA", m}, {"LDC", m}, {"LWORK", lw}}, {{"SIDE", 'L'}, {"TRANS", 'T'}}},
      {"dormqr", {{"M", m}, {"N", n}, {"K", k}, {"LDA", n}, {"LDC", m}, {"LWORK", lw}}, {{"SIDE", 'R'}, {"TRANS", 'N'}}},
      {"dsyev", {{"N", n}, {"LDA", n}, {"LWORK", lw}}, {{"JOBZ", 'V'}, {"UPLO", 'U'}}},
      {"dsyevr", {{"N", n}, {"LDA", n}, {"IL", 1}, {"IU", 2}, {"LDZ", n}, {"LWORK", lw}, {"LIWORK", lw}},
       {{"JOBZ", 'V'}, {"RANGE", 'I'}, {"UPLO", 'L'}}},
      {"dgeev", {{"N", n}, {"LDA", n}, {"LDVL", n}, {"LDVR", n}, {"LWORK", lw}}, {{"JOBVL", 'V'}, {"JOBVR", 'V'}}},
      {"dgeev", {{"N", n}, {"LDA", n}, {"LDVL", 1}, {"LDVR", 1}, {"LWORK", lw}}, {{"JOBVL", 'N'}, {"JOBVR", 'N'}}},
      {"dgesvd", {{"M", m}, {"N", n}, {"LDA", m}, {"LDU", m}, {"LDVT", n}, {"LWORK", lw}}, {{"JOBU", 'A'}, {"JOBVT", 'A'}}},
      {"dgesvd", {{"M", m}, {"N", n}, {"LDA", m}, {"LDU", m}, {"LDVT", n}, {"LWORK", lw}}, {{"JOBU", 'S'}, {"JOBVT", 'S'}}},
      {"dgesvd", {{"M", m}, {"N", n}, {"LDA", m}, {"LDU", 1}, {"LDVT", 1}, {"LWORK", lw}}, {{"JOBU", 'N'}, {"JOBVT", 'N'}}},
      {"dgesdd", {{"M", m}, {"N", n}, {"LDA", m}, {"LDU", m}, {"LDVT", n}, {"LWORK", lw}}, {{"JOBZ", 'S'}}},
      {"zheev", {{"N", n}, {"LDA", n}, {"LWORK", lw}}, {{"JOBZ", 'V'}, {"UPLO", 'L'}}},
      {"dlange", {{"M", m}, {"N", n}, {"LDA", m}}, {{"NORM", 'I'}}},
      {"dlange", {{"M", m}, {"N", n}, {"LDA", m}}, {{"NORM", 'F'}}},
      {"dgbsv", {{"N", n}, {"KL", 1}, {"KU", 2}, {"NRHS", 2}, {"LDAB", 6}, {"LDB", n}}, {}},
      {"dbdsqr", {{"N", n}, {"NCVT", 3}, {"NRU", 4}, {"NCC", 0}, {"LDVT", n}, {"LDU", 4}, {"LDC", 1}}, {{"UPLO", 'U'}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.routine);
    const int64_t info = run_case(decls, c);
    EXPECT_GE(info, 0) << c.routine << " rejected an argument of the sample";
  }
}

// The complex routines whose work passes through zgemv, zhemv or the strided complex dot products (Householder
// reflections applied from the right with a row of A as the vector, the Hermitian tridiagonal reduction, the
// triangular product of zpotri): OpenBLAS's kernels read one element past the caller's array there
// (src/linalg/vector_kernel_routes.cpp). Each on 5 by 7, 7 by 5 and 6 by 6 problems (two-row tails of the
// four-row blocking), and square ones of orders 3 to 6.
TEST(DeclaredLengths, ComplexRoutinesReadNothingBeyondTheirArrays) {
  const auto decls = read_decls();
  const int64_t lw = 400;
  for (const auto& [m, n] : {std::pair<int64_t, int64_t>{5, 7}, {7, 5}, {6, 6}}) {
    const std::map<std::string, int64_t> sizes = {{"M", m}, {"N", n}, {"K", std::min(m, n)}, {"P", m}, {"NRHS", 2},
                                                  {"LDA", m}, {"LDB", std::max(m, n)}, {"LDU", m}, {"LDVT", n},
                                                  {"LWORK", lw}, {"IL", 1}, {"IU", 2}, {"NS", 0}};
    for (const char* routine : {"zgelqf", "zgerqf", "zgeqrf", "zgebrd", "zgelss", "zgelsd", "zgels"}) {
      SCOPED_TRACE(routine);
      EXPECT_GE(run_case(decls, {routine, sizes, {{"TRANS", 'N'}}}), 0) << m << " by " << n;
    }
    for (char job : {'N', 'S', 'A'}) {
      SCOPED_TRACE(job);
      EXPECT_EQ(run_case(decls, {"zgesdd", sizes, {{"JOBZ", job}}}), 0) << m << " by " << n;
      EXPECT_EQ(run_case(decls, {"zgesvd", sizes, {{"JOBU", job}, {"JOBVT", job}}}), 0) << m << " by " << n;
    }
    EXPECT_EQ(run_case(decls, {"zgesvdx", sizes, {{"JOBU", 'V'}, {"JOBVT", 'V'}, {"RANGE", 'I'}}}), 0);
    // A square part for the routines generating or combining factorisations.
    const int64_t k = std::min(m, n);
    std::map<std::string, int64_t> square = sizes;
    square["M"] = square["N"] = square["K"] = square["P"] = k;
    square["LDA"] = square["LDB"] = k;
    for (const char* routine : {"zunglq", "zungrq", "zggqrf", "zggrqf", "zgglse", "zggglm"}) {
      SCOPED_TRACE(routine);
      EXPECT_EQ(run_case(decls, {routine, square, {}}), 0) << k;
    }
  }
  for (int64_t n = 3; n <= 6; ++n) {
    const std::map<std::string, int64_t> sizes = {{"N", n}, {"LDA", n}, {"LWORK", lw}};
    for (char uplo : {'U', 'L'}) {
      SCOPED_TRACE(uplo);
      EXPECT_GE(run_case(decls, {"zpotri", sizes, {{"UPLO", uplo}}}), 0) << n;
      EXPECT_GE(run_case(decls, {"zhetrd", sizes, {{"UPLO", uplo}}}), 0) << n;
      EXPECT_GE(run_case(decls, {"zheev", sizes, {{"UPLO", uplo}, {"JOBZ", 'V'}}}), 0) << n;
      for (char transr : {'N', 'C'})
        EXPECT_GE(run_case(decls, {"zpftri", sizes, {{"UPLO", uplo}, {"TRANSR", transr}}}), 0) << n;
    }
  }
}

}  // namespace
