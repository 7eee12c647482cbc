// Published BLAS/LAPACK name -> library routine, sorted by published name: the table the build generates
// from the declarations' published names.
#include "linalg/name_map.h"

namespace vek::linalg {

const NamePair kPublishedNames[] = {
#include "published_names.inc"
};

const std::span<const NamePair> published_names{kPublishedNames};

}  // namespace vek::linalg
