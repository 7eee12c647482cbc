// F07ADF and F07ARF (published as DGETRF and ZGETRF): LU factorisation with partial pivoting, A = P L U, of a
// real or complex M by N matrix, one code for both element types.
//
// The arguments are checked here, in argument order (M, N, LDA: INFO = -1, -2, -4 with the argument-error
// report "F07ADF/DGETRF" or "F07ARF/ZGETRF"). The factorisation is right-looking and blocked, with its pieces
// fixed by the matrix alone so that its rounding does not depend on the team:
//   - panels of kPanel columns, each factorised by the dependency's recursive LU on one thread;
//   - the columns right of panel s updated, one unit of kUnit panel widths at a time, by the panel's
//     interchanges, U12 = L11^-1 A12 and A22 -= L21 U12 (the dependency's ?laswp, ?trsm, ?gemm on one thread);
//   - the interchanges of the later panels applied to the columns of panel s once its updates are done.
// Every unit receives its updates in panel order, each computed whole by one thread, so every element sees
// the same operations in the same order with 1, 2 or any number of threads. Which thread runs which piece is
// decided as they become ready (a dependency graph, no barrier between panels): the next panel's
// factorisation first, then the update nearest to it, then the deferred interchanges; so the serial panel
// work overlaps the updates of the columns further right (look-ahead of any depth).
// The team is the one x06aaf sets; inside a caller's active parallel region everything runs on one thread.
// INFO = i > 0 reports the first exactly zero U(i,i), silently; the factorisation is completed.
#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <new>
#include <optional>
#include <vector>

#include "frame/threads.h"
#include "forwarded.h"
#include "linalg/argument_error.h"
#include "linalg/factor_kernels.h"
#include "linalg/lu_factor.h"

namespace vek::linalg {
namespace {

constexpr int64_t kPanel = 256;  // columns per panel
constexpr int64_t kUnit = 2;     // panels per update unit: one ?gemm packs L21 once for 512 columns
constexpr int64_t kOne = 1;

// The panels and update units of an m by n matrix, and which panel steps each unit needs.
struct Pieces {
  int64_t m, n, mn, panels, units;
  std::vector<int64_t> needs;  // steps 0 .. needs[u]-1 update unit u: the panels ending left of its end

  Pieces(int64_t rows, int64_t cols) : m(rows), n(cols), mn(std::min(rows, cols)) {
    panels = (mn + kPanel - 1) / kPanel;
    units = (n + kUnit * kPanel - 1) / (kUnit * kPanel);
    needs.resize(static_cast<size_t>(units));
    for (int64_t u = 0; u < units; ++u) {
      int64_t s = 0;
      while (s < panels && panel_end(s) < unit_end(u)) ++s;
      needs[static_cast<size_t>(u)] = s;
    }
  }
  int64_t panel_begin(int64_t p) const { return p * kPanel; }
  int64_t panel_end(int64_t p) const { return std::min((p + 1) * kPanel, mn); }
  int64_t unit_begin(int64_t u) const { return u * kUnit * kPanel; }
  int64_t unit_end(int64_t u) const { return std::min((u + 1) * kUnit * kPanel, n); }
  int64_t unit_of(int64_t p) const { return p / kUnit; }
};

// Panel p factorised in place; pivots become global row numbers. Returns the global column of the first
// exactly zero pivot, or 0.
template <class T>
int64_t factor_panel(const Pieces& g, int64_t p, T* a, int64_t lda, int64_t* ipiv) {
  const int64_t k = g.panel_begin(p), jb = g.panel_end(p) - k, rows = g.m - k;
  int64_t info = 0;
  FactorKernels<T>::getrf(&rows, &jb, element(a, lda, k, k), &lda, ipiv + k, &info);
  for (int64_t i = k; i < k + jb; ++i) ipiv[i] += k;
  return info > 0 ? info + k : 0;
}

// Step s on the columns of unit u right of panel s: interchanges, triangular solve, trailing update.
template <class T>
void update_unit(const Pieces& g, int64_t s, int64_t u, T* a, int64_t lda, const int64_t* ipiv) {
  using K = FactorKernels<T>;
  const int64_t k = g.panel_begin(s), jb = g.panel_end(s) - k, below = g.m - k - jb;
  const int64_t j0 = std::max(g.unit_begin(u), g.panel_end(s)), nc = g.unit_end(u) - j0;
  const int64_t k1 = k + 1, k2 = k + jb;
  const T plus_one = unit<T>(1.0), minus_one = unit<T>(-1.0);
  K::laswp(&nc, element(a, lda, 0, j0), &lda, &k1, &k2, ipiv, &kOne);
  K::trsm("L", "L", "N", "U", &jb, &nc, &plus_one, element(a, lda, k, k), &lda, element(a, lda, k, j0), &lda, 1, 1,
          1, 1);
  if (below > 0)
    K::gemm("N", "N", &below, &nc, &jb, &minus_one, element(a, lda, k + jb, k), &lda, element(a, lda, k, j0), &lda,
            &plus_one, element(a, lda, k + jb, j0), &lda, 1, 1);
}

// The interchanges of panels first .. last-1 applied to the columns of panel p (exact: any order of these
// calls that keeps the panels' order gives the same matrix).
template <class T>
void swap_left(const Pieces& g, int64_t p, int64_t first, int64_t last, T* a, int64_t lda, const int64_t* ipiv) {
  const int64_t nc = g.panel_end(p) - g.panel_begin(p), k1 = g.panel_begin(first) + 1, k2 = g.panel_end(last - 1);
  FactorKernels<T>::laswp(&nc, element(a, lda, 0, g.panel_begin(p)), &lda, &k1, &k2, ipiv, &kOne);
}

// The shared state of one factorisation: what is done, what is claimed, and the choice of the next piece.
template <class T>
class Graph {
 public:
  Graph(const Pieces& g, T* a, int64_t lda, int64_t* ipiv)
      : g_(g), a_(a), lda_(lda), ipiv_(ipiv), applied_(static_cast<size_t>(g.units), 0),
        unit_busy_(static_cast<size_t>(g.units), false), pending_(static_cast<size_t>(g.panels), 0),
        swapped_(static_cast<size_t>(g.panels)), swap_busy_(static_cast<size_t>(g.panels), false) {
    for (int64_t u = 0; u < g.units; ++u) {
      updates_left_ += g.needs[static_cast<size_t>(u)];
      for (int64_t s = 0; s < g.needs[static_cast<size_t>(u)]; ++s) ++pending_[static_cast<size_t>(s)];
    }
    for (int64_t p = 0; p < g.panels; ++p) swapped_[static_cast<size_t>(p)] = p + 1;
  }

  // Runs pieces until the factorisation is complete.
  void work() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
      const Piece piece = claim();
      if (piece.kind == Kind::kNone) {
        if (done()) return;
        ready_.wait(lock);
        continue;
      }
      lock.unlock();
      int64_t info = 0;
      if (piece.kind == Kind::kFactor) info = factor_panel(g_, piece.a, a_, lda_, ipiv_);
      else if (piece.kind == Kind::kUpdate) update_unit(g_, piece.a, piece.b, a_, lda_, ipiv_);
      else swap_left(g_, piece.a, piece.b, piece.c, a_, lda_, ipiv_);
      lock.lock();
      finish(piece, info);
      ready_.notify_all();
    }
  }

  int64_t info() const { return info_; }

 private:
  enum class Kind { kNone, kFactor, kUpdate, kSwap };
  // kFactor: panel a; kUpdate: step a on unit b; kSwap: panels b .. c-1 onto the columns of panel a.
  struct Piece {
    Kind kind = Kind::kNone;
    int64_t a = 0, b = 0, c = 0;
  };

  size_t at_(int64_t i) const { return static_cast<size_t>(i); }

  Piece claim() {
    if (factored_ < g_.panels && !factoring_) {
      const int64_t u = g_.unit_of(factored_);
      if (!unit_busy_[at_(u)] && applied_[at_(u)] >= factored_) {
        factoring_ = true;
        unit_busy_[at_(u)] = true;
        return {Kind::kFactor, factored_};
      }
    }
    for (int64_t u = 0; u < g_.units; ++u) {
      const int64_t s = applied_[at_(u)];
      if (!unit_busy_[at_(u)] && s < g_.needs[at_(u)] && s < factored_) {
        unit_busy_[at_(u)] = true;
        return {Kind::kUpdate, s, u};
      }
    }
    for (int64_t p = 0; p < g_.panels; ++p) {
      const int64_t from = swapped_[at_(p)];
      if (!swap_busy_[at_(p)] && pending_[at_(p)] == 0 && from < factored_) {
        swap_busy_[at_(p)] = true;
        swapped_[at_(p)] = factored_;
        return {Kind::kSwap, p, from, factored_};
      }
    }
    return {};
  }

  void finish(const Piece& piece, int64_t info) {
    if (piece.kind == Kind::kFactor) {
      if (info_ == 0) info_ = info;
      ++factored_;
      factoring_ = false;
      unit_busy_[at_(g_.unit_of(piece.a))] = false;
    } else if (piece.kind == Kind::kUpdate) {
      ++applied_[at_(piece.b)];
      --pending_[at_(piece.a)];
      --updates_left_;
      unit_busy_[at_(piece.b)] = false;
    } else {
      swap_busy_[at_(piece.a)] = false;
    }
  }

  bool done() const {
    if (factored_ < g_.panels || updates_left_ > 0) return false;
    for (int64_t p = 0; p < g_.panels; ++p)
      if (swapped_[at_(p)] < g_.panels || swap_busy_[at_(p)]) return false;
    return true;
  }

  const Pieces& g_;
  T* a_;
  int64_t lda_;
  int64_t* ipiv_;
  std::mutex mutex_;
  std::condition_variable ready_;
  std::vector<int64_t> applied_;   // steps applied to each unit
  std::vector<bool> unit_busy_;    // a unit being updated, or holding the panel being factorised
  std::vector<int64_t> pending_;   // units still waiting for each step
  std::vector<int64_t> swapped_;   // panels whose interchanges each panel's columns have received
  std::vector<bool> swap_busy_;
  int64_t factored_ = 0, updates_left_ = 0, info_ = 0;
  bool factoring_ = false;
};

template <class T>
int64_t factor(int64_t m, int64_t n, T* a, int64_t lda, int64_t* ipiv, WithoutMemory without_memory) {
  if (std::min(m, n) == 0) return 0;
  // The bookkeeping of the pieces is the only memory the factorisation takes, allocated here before any
  // thread starts. Without it (WithoutMemory::use_dependency) the dependency factorises the whole matrix on the
  // calling thread: a different blocking, so other last bits than the pieces give, but still independent of the
  // thread count.
  std::optional<Pieces> pieces;
  std::optional<Graph<T>> graph;
  try {
    pieces.emplace(m, n);
    graph.emplace(*pieces, a, lda, ipiv);
  } catch (const std::bad_alloc&) {
    if (without_memory == WithoutMemory::throw_bad_alloc) throw;
    int64_t info = 0;
    FactorKernels<T>::getrf(&m, &n, a, &lda, ipiv, &info);
    return info;
  }
  const int64_t work = pieces->panels + static_cast<int64_t>(pieces->needs.size());
  const int team = threads::in_parallel() || work <= 2
                       ? 1
                       : static_cast<int>(std::clamp<int64_t>(threads::max_threads(), 1, work));
  if (team == 1) {
    graph->work();
  } else {
#pragma omp parallel num_threads(team)
    graph->work();
  }
  return graph->info();
}

// The published entry: checks in argument order, then the factorisation. Never throws: the drivers calling it
// are not C++.
template <class T>
void published_factor(const int64_t* m, const int64_t* n, T* a, const int64_t* lda, int64_t* ipiv, int64_t* info) {
  int64_t bad = 0;
  if (*m < 0) bad = 1;
  else if (*n < 0) bad = 2;
  else if (*lda < std::max<int64_t>(1, *m)) bad = 4;
  if (bad != 0) {
    *info = -bad;
    argument_error(FactorKernels<T>::kGetrf, bad);
    return;
  }
  *info = factor(*m, *n, a, *lda, ipiv, WithoutMemory::use_dependency);
}

}  // namespace

int64_t lu_factor(int64_t m, int64_t n, double* a, int64_t lda, int64_t* ipiv, WithoutMemory without_memory) {
  return factor(m, n, a, lda, ipiv, without_memory);
}

int64_t lu_factor(int64_t m, int64_t n, vek_complex* a, int64_t lda, int64_t* ipiv, WithoutMemory without_memory) {
  return factor(m, n, a, lda, ipiv, without_memory);
}

}  // namespace vek::linalg

// The library's DGETRF and ZGETRF: F07ADF's and F07ARF's generated workers and the dependency's LAPACK drivers
// (dgesvx, zgesvx ...) come here.
extern "C" void vektl_dgetrf_(const int64_t* m, const int64_t* n, double* a, const int64_t* lda, int64_t* ipiv,
                              int64_t* info) {
  vek::linalg::published_factor(m, n, a, lda, ipiv, info);
}

extern "C" void vektl_zgetrf_(const int64_t* m, const int64_t* n, vek_complex* a, const int64_t* lda, int64_t* ipiv,
                              int64_t* info) {
  vek::linalg::published_factor(m, n, a, lda, ipiv, info);
}
