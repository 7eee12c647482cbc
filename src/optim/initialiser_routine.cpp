// Body of E04WBF: the initialiser of a family's save areas, for a caller that keeps them.
#include <algorithm>
#include <array>
#include <string>

#include "frame/text.h"
#include "layers/e04.h"
#include "optim/option_store.h"

namespace {

// The solvers whose optional parameters live in save areas of this layout, by the name E04WBF is given:
// one entry per option family, in alphabetical order.
constexpr std::array<std::string_view, 2> kSolvers{"E04DGF", "E04UCF"};

std::string upper_case(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

std::string solver_list() {
  std::string out;
  for (std::string_view name : kSolvers) out += (out.empty() ? "" : ", ") + std::string(name);
  return out;
}

// The declared length checks (LLWSAV >= 3, LIWSAV >= 61, LRWSAV >= 60) are the store's layout.
static_assert(vek::optim::kLwsavLength == 3 && vek::optim::kIwsavLength == 61 && vek::optim::kRwsavLength == 60);

}  // namespace

// The lengths have been checked (the declared checks); the name is read without surrounding blanks and in
// either case. CWSAV(1) receives the solver's name, cut or padded to the records' length.
void vek::routines::e04wbf::run(frame::ErrorBuffer& err, const char* rname, char* cwsav, const int64_t*,
                                int64_t* lwsav, const int64_t*, int64_t* iwsav, const int64_t*, double* rwsav,
                                const int64_t*, int64_t rname_len, int64_t cwsav_len) {
  const std::string name = upper_case(text::trim(text::view(rname, rname_len)));
  if (std::find(kSolvers.begin(), kSolvers.end(), name) == kSolvers.end())
    return err.fail(unknown_solver, text::view(rname, rname_len), solver_list());
  optim::initialise(optim::Areas(lwsav, iwsav, rwsav));
  text::assign(cwsav, cwsav_len, name);
}
