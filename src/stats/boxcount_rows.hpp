// The rows that gather extrema element by element.
#pragma once
#include "kernel/level_table.hpp"
#include "kernel/row.hpp"

namespace jorm {

// dst = the smaller, the larger one of dst and src; NaN changes nothing. By stat_line().
struct BoxRows {
    Row least[4], largest[4];
};

JORM_LEVEL_TABLE(const BoxRows, box_rows);

} // namespace jorm
