#ifndef KZGIS_POLYTREE_REFUSED_H
#define KZGIS_POLYTREE_REFUSED_H

#include "kzgis/types.h"

/// Status 2 under the name that fits nodes and trees.
namespace kzgis::status {
inline constexpr kz_ulong refused = wrong_kind;
}  // namespace kzgis::status

#endif
