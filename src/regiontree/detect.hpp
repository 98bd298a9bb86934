// Stable regions of a tree.
#pragma once
#include "jorm/watershed.h"

namespace jorm {

// Appends the stable regions. In a tree that a flood has just left all flags are clear, which spares the visits to what
// is too small.
jorm_vector *detect_mser(jorm_vector *regions, jorm_fwtsr *root, const jorm_msercriteria &criteria, bool fresh);

} // namespace jorm
