// Workers of the A00 routines. a00aaf writes the banner of identification.h on the advisory unit, one record
// a line. a00adf returns the same facts through its arguments: IMPL the implementation title (platform, word
// and integer size), PREC the precision, PCODE the product code, MKBD the release ("Mark"), HDWARE the
// processor, OPSYS the kernel of the build machine, COMPLR the compiler and its version, FLAGS its flags,
// BUILT the build date, LICVAL whether a licence is valid. a00acf answers the licence query.
#include <exception>

#include "frame/build_info.h"
#include "frame/identification.h"
#include "frame/licence.h"
#include "frame/text.h"
#include "frame/units.h"
#include "layers/a00.h"

extern "C" {

void a00aafn_() {
  try {
    const int64_t unit = vek::units::advisory_unit();
    for (const std::string& line : vek::identification::banner()) vek::units::write_record(unit, line);
  } catch (const std::exception&) {
    // Kernels never throw to the caller: without memory for the banner nothing is printed.
  }
}

void a00adfn_(char* impl, char* prec, char* pcode, char* mkbd, char* hdware, char* opsys, char* complr,
              char* flags, char* built, int64_t* licval, int64_t impl_len, int64_t prec_len, int64_t pcode_len,
              int64_t mkbd_len, int64_t hdware_len, int64_t opsys_len, int64_t complr_len, int64_t flags_len,
              int64_t built_len) {
  namespace b = vek::build_info;
  using vek::text::assign;
  assign(impl, impl_len, b::kPlatform);
  assign(prec, prec_len, b::kPrecision);
  assign(pcode, pcode_len, b::kProductCode);
  assign(mkbd, mkbd_len, b::kMark);
  assign(hdware, hdware_len, b::kHardware);
  assign(opsys, opsys_len, b::kKernel);
  assign(complr, complr_len, b::kCompiler);
  assign(flags, flags_len, b::kFlags);
  assign(built, built_len, b::kDate);
  *licval = vek::licence::granted("A00ADFN") ? 1 : 0;
}

int64_t a00acfn_() { return vek::licence::granted("A00ACFN") ? 1 : 0; }

}  // extern "C"
