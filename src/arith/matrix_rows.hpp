// What a level offers for matrix products.
#pragma once
#include "jorm/types.h"
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// The line of an element type in the tables below, -1 when there is none.
constexpr int matrix_line(uint32_t type) {
    return type == JORM_U8    ? 0
           : type == JORM_S16 ? 1
           : type == JORM_S32 ? 2
           : type == JORM_F32 ? 3
           : type == JORM_F64 ? 4
                              : -1;
}

// Numbers in double precision and elements of an array, as rows of n; steps count numbers, strides bytes.
struct MatrixTransfer {
    double *numbers;
    int64_t row_step, step;
    char *elements;
    int64_t row_stride, stride;
    int64_t rows, n;
};

// The most vectors of a block, each component of which is a row of so many numbers.
constexpr int64_t vector_block = 256;

struct MatrixRows {
    void (*load[5])(const MatrixTransfer &t);  // elements become numbers
    void (*store[5])(const MatrixTransfer &t); // numbers become elements: rounded, clamped

    // Adds to a tile of sums the product of `rows` (or 1) rows and `columns` columns of k numbers, in the order of k.
    // Numbers lie by k; `exact` promises that no product is rounded.
    int rows, columns;
    void (*multiply[2])(double *sums, const double *a, const double *b, int64_t k); // by `exact`
    void (*multiply_row[2])(double *sums, const double *a, const double *b, int64_t k);

    // For 1 to 4 components: `rows` results of n vectors each.
    void (*transform[4])(double *to, const double *from, const double *matrix, int rows, int64_t n);
};

JORM_LEVEL_TABLE(const MatrixRows, matrix_rows);

inline const MatrixRows &matrix_rows_at(Level which) { return JORM_OF_LEVEL(matrix_rows, which)[0]; }

} // namespace jorm
