// Products of matrices, and of a matrix with many vectors.
#include "jorm/matrix.h"

#include "arith/matrix_rows.hpp"
#include "convert/copy_front.hpp"
#include "kernel/front.hpp"
#include "xe/scratch.hpp"

#include <algorithm>

namespace jorm {
namespace {

// An array of one channel in any layout; as well a transposed one, or a vector.
struct Matrix {
    int64_t rows, columns;
    uint32_t type;
    char *start;
    int64_t row_stride, stride;

    Matrix transposed() const { return {columns, rows, type, start, stride, row_stride}; }
    // Elements from a position on, as a transfer sees them.
    MatrixTransfer part(int64_t row, int64_t column, int64_t n_rows, int64_t n) const {
        return {nullptr, 0, 0, start + row * row_stride + column * stride, row_stride, stride, n_rows, n};
    }
};

Matrix plane_of(const jorm_array &a, int64_t plane = 0) {
    return {int32_t(a.extent[1]),
            int32_t(a.extent[2]),
            a.eltype,
            static_cast<char *>(a.base) + a.loff + plane * (a.ndims == 4 ? a.stride[0] : 0),
            a.stride[1],
            a.stride[2]};
}

// A single row or column, as a row.
Matrix row_of(const jorm_array &a) {
    const Matrix m = plane_of(a);
    return m.rows == 1 ? m : m.transposed();
}

// Are products of two such elements exact in double precision?
bool exact(uint32_t a, uint32_t b) {
    constexpr auto digits = [](uint32_t type) {
        return type == JORM_F32 ? 24 : type == JORM_F64 ? 53 : type == JORM_S32 ? 31 : 16;
    };
    return digits(a) + digits(b) <= 53;
}

// --------------------------------------------------------- product of matrices

// In blocks: rows of a whose numbers stay in the second-level cache, pieces of columns of b that stay in the first.
constexpr int64_t block_numbers = 65536, most_rows = 128, piece = 192;

struct Product {
    const MatrixRows &rows;
    Matrix dst, a, b;
    double *of_a, *of_b, *sums;
    int tile_rows; // 1 for a single row

    // The block of rows from `row` on.
    void run_block(int64_t row, int64_t n) const {
        const int columns = rows.columns;
        for (int64_t i = 0; i < n; i += tile_rows) load_tile_of_a(row + i, std::min<int64_t>(tile_rows, n - i), i);
        for (int64_t x = 0; x < dst.columns; x += columns) {
            const int64_t width = std::min<int64_t>(columns, dst.columns - x);
            std::fill(sums, sums + round_up(n, tile_rows) * columns, 0.0);
            for (int64_t k = 0; k < a.columns; k += piece) add_piece(n, x, width, k);
            MatrixTransfer t = dst.part(row, x, n, width);
            t.numbers = sums, t.row_step = columns, t.step = 1;
            rows.store[matrix_line(dst.type)](t);
        }
    }

    static int64_t round_up(int64_t n, int64_t step) { return (n + step - 1) / step * step; }

private:
    double *tile_of_a(int64_t i) const { return of_a + i * a.columns; }
    void load_tile_of_a(int64_t row, int64_t n, int64_t i) const {
        MatrixTransfer t = a.part(row, 0, n, a.columns);
        t.numbers = tile_of_a(i), t.row_step = 1, t.step = tile_rows;
        if (n < tile_rows) std::fill(t.numbers, t.numbers + tile_rows * a.columns, 0.0);
        rows.load[matrix_line(a.type)](t);
    }
    void add_piece(int64_t n, int64_t x, int64_t width, int64_t k) const {
        const int columns = rows.columns;
        const int64_t depth = std::min(piece, a.columns - k);
        MatrixTransfer t = b.part(k, x, depth, width);
        t.numbers = of_b, t.row_step = columns, t.step = 1;
        if (width < columns) std::fill(of_b, of_b + depth * columns, 0.0);
        rows.load[matrix_line(b.type)](t);
        const auto multiply = (tile_rows == 1 ? rows.multiply_row : rows.multiply)[exact(a.type, b.type)];
        for (int64_t i = 0; i < n; i += tile_rows)
            multiply(sums + i * columns, tile_of_a(i) + k * tile_rows, of_b, depth);
    }
};

// The rows of dst may be those of a.
int64_t multiply(jorm_xe *xe, uint64_t options, const Matrix &dst, const Matrix &a, const Matrix &b) {
    const MatrixRows &rows = matrix_rows_at(level(options));
    const int tile_rows = dst.rows == 1 ? 1 : rows.rows;
    const int64_t fitting = std::clamp<int64_t>(block_numbers / a.columns, 1, most_rows);
    const int64_t block = Product::round_up(std::min(fitting, dst.rows), tile_rows);
    const Scratch of_a(xe, scratch_bytes(block, a.columns, sizeof(double)), 64);
    if (!of_a) return JORM_ENOMEM;
    const Scratch others(xe, scratch_bytes(piece + block, rows.columns, sizeof(double)), 64);
    if (!others) return JORM_ENOMEM;
    auto *const of_b = others.as<double>();
    const Product product = {rows, dst, a, b, of_a.as<double>(), of_b, of_b + piece * rows.columns, tile_rows};
    for (int64_t row = 0; row < dst.rows; row += block) product.run_block(row, std::min(block, dst.rows - row));
    return JORM_OK;
}

// --------------------------------------------------------------- many vectors

// Vectors that are pixels.
struct Pixels {
    const MatrixRows &rows;
    const jorm_array &dst, &src;
    int dst_channels, src_channels;
    double matrix[16];

    Pixels(const MatrixRows &rows, const jorm_array &dst, const jorm_array &src, const Matrix &m)
        : rows(rows), dst(dst), src(src), dst_channels(int(m.rows)), src_channels(int(m.columns)) {
        MatrixTransfer t = m.part(0, 0, m.rows, m.columns);
        t.numbers = matrix, t.row_step = m.columns, t.step = 1;
        rows.load[matrix_line(m.type)](t);
    }
    void transform_row(char *to, char *from, int64_t pixels) const {
        alignas(64) double components[4 * vector_block], results[4 * vector_block];
        const int64_t dst_step = dst.stride[2], src_step = src.stride[2];
        for (int64_t x = 0; x < pixels; x += vector_block) {
            const int64_t n = std::min(vector_block, pixels - x);
            rows.load[matrix_line(src.eltype)](
                {components, vector_block, 1, from + x * src_step, src.stride[3], src_step, src_channels, n});
            rows.transform[src_channels - 1](results, components, matrix, dst_channels, n);
            rows.store[matrix_line(dst.eltype)](
                {results, vector_block, 1, to + x * dst_step, dst.stride[3], dst_step, dst_channels, n});
        }
    }
};

// --------------------------------------------------------------------- fronts

bool described(const jorm_array *a) { return check_operands(a, {a, nullptr}) == JORM_OK; }
bool is_matrix(const jorm_array *a) { return described(a) && stored_channels(a->extent[3]) == 1; }
bool has_elements(const jorm_array &a) {
    return int32_t(a.extent[1]) > 0 && int32_t(a.extent[2]) > 0 && (a.ndims < 4 || int32_t(a.extent[0]) > 0);
}

int64_t check_type(uint32_t type, bool integers) {
    if (!well_formed(type)) return JORM_EINVAL;
    return type == JORM_F32 || type == JORM_F64 || (integers && matrix_line(type) >= 0) ? JORM_OK : JORM_ENOTSUP;
}

bool overlap(const jorm_array &a, const jorm_array &b) {
    const auto whole = [](const jorm_array &array, int32_t *size, int32_t *stride) {
        for (int i = 0; i < 4; ++i) size[i] = int32_t(array.extent[i]), stride[i] = array.stride[i];
        size[3] = stored_channels(array.extent[3]);
        if (array.ndims < 4) size[0] = 1, stride[0] = 0;
        return Operand(array.eltype, plane_of(array).start, stride);
    };
    int32_t size_a[4], stride_a[4], size_b[4], stride_b[4];
    const Operand in_a = whole(a, size_a, stride_a);
    Operand in_b = whole(b, size_b, stride_b);
    return may_meet(4, size_a[3], size_a, in_a, size_b, in_b, size_b[3]);
}

// What the first two have in common once their sizes are known to agree.
int64_t multiply_arrays(jorm_xe *xe, uint64_t options, const jorm_array &dst, const jorm_array &a, const jorm_array &b,
                        const Matrix &product, const Matrix &left, const Matrix &right) {
    if (product.rows != left.rows || left.columns != right.rows || product.columns != right.columns) return JORM_EINVAL;
    if (!has_elements(dst) || !has_elements(a) || !has_elements(b)) return JORM_EEMPTY;
    for (const jorm_array *array : {&dst, &a, &b})
        if (const int64_t status = check_type(array->eltype, false); status != JORM_OK) return status;
    if (dst.ndims > 3 || a.ndims > 3 || b.ndims > 3) return JORM_ENOTSUP;
    if (overlap(dst, a) || overlap(dst, b)) return JORM_EINVAL;
    return multiply(xe, options, product, left, right);
}

enum class Vectors { pixels, rows, unfit };

Vectors vectors_of(const jorm_array &dst, const jorm_array &m, const jorm_array &v) {
    const int channels = stored_channels(v.extent[3]), dst_channels = stored_channels(dst.extent[3]);
    if (dst.ndims != v.ndims || (dst.ndims == 4 && dst.extent[0] != v.extent[0]) || dst.extent[1] != v.extent[1])
        return Vectors::unfit;
    if (channels == int32_t(m.extent[2]) && dst_channels == int32_t(m.extent[1]) && dst.extent[2] == v.extent[2])
        return Vectors::pixels;
    const bool rows = channels == 1 && dst_channels == 1 && v.extent[2] == m.extent[2] && dst.extent[2] == m.extent[1];
    return rows ? Vectors::rows : Vectors::unfit;
}

// Moves the source into scratch memory where the destination would overwrite it too early.
int64_t detach(Detached &detached, jorm_xe *xe, uint64_t options, const jorm_array &dst, jorm_array &src) {
    if (!overlap(dst, src)) return JORM_OK;
    static constexpr int32_t origin[4] = {};
    const int first = 4 - src.ndims;
    const int32_t channels = stored_channels(src.extent[3]);
    int32_t size[4];
    for (int i = 0; i < 4; ++i) size[i] = int32_t(src.extent[i]);
    Operand from = operand_at(src, origin);
    if (channels == stored_channels(dst.extent[3]) && src.extent[2] == dst.extent[2] &&
        coincide(src.ndims, size + first, channels, operand_at(dst, origin), from))
        return JORM_OK;
    if (const int64_t status = detached.move(xe, options, src.ndims, size + first, channels, from); status != JORM_OK)
        return status;
    src.base = from.start;
    src.loff = 0;
    std::copy(from.stride, from.stride + src.ndims, src.stride + first);
    return JORM_OK;
}

} // namespace
} // namespace jorm

using namespace jorm;

JORM_API int64_t JormMulMM(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *a,
                           const jorm_array *b) {
    if (!xe || !is_matrix(dst) || !is_matrix(a) || !is_matrix(b)) return JORM_EINVAL;
    return multiply_arrays(xe, options, *dst, *a, *b, plane_of(*dst), plane_of(*a), plane_of(*b));
}

// As rows: dst = v x m transposed.
JORM_API int64_t JormMulMV(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *m,
                           const jorm_array *v) {
    if (!xe || !is_matrix(dst) || !is_matrix(m) || !is_matrix(v)) return JORM_EINVAL;
    const Matrix to = row_of(*dst), from = row_of(*v);
    if (to.rows != 1 || from.rows != 1) return JORM_EINVAL;
    return multiply_arrays(xe, options, *dst, *v, *m, to, from, plane_of(*m).transposed());
}

JORM_API int64_t JormMulMV_n(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *m,
                             const jorm_array *v) {
    if (!described(dst) || !is_matrix(m) || !described(v)) return JORM_EINVAL;
    const Vectors vectors = vectors_of(*dst, *m, *v);
    if (vectors == Vectors::unfit || (vectors == Vectors::rows && !xe)) return JORM_EINVAL;
    if (!has_elements(*dst) || !has_elements(*m) || !has_elements(*v)) return JORM_EEMPTY;
    for (const jorm_array *array : {dst, m, v})
        if (const int64_t status = check_type(array->eltype, array != m); status != JORM_OK) return status;
    if (m->ndims > 3) return JORM_ENOTSUP;
    if (overlap(*dst, *m)) return JORM_EINVAL;
    jorm_array src = *v;
    Detached detached;
    if (const int64_t status = detach(detached, xe, options, *dst, src); status != JORM_OK) return status;

    const Matrix matrix = plane_of(*m);
    const int64_t planes = dst->ndims == 4 ? int64_t(dst->extent[0]) : 1;
    if (vectors == Vectors::rows) {
        for (int64_t z = 0; z < planes; ++z)
            if (const int64_t status = multiply(xe, options, plane_of(*dst, z), plane_of(src, z), matrix.transposed());
                status != JORM_OK)
                return status;
        return JORM_OK;
    }
    const Pixels pixels(matrix_rows_at(level(options)), *dst, src, matrix);
    for (int64_t z = 0; z < planes; ++z) {
        const Matrix to = plane_of(*dst, z), from = plane_of(src, z);
        for (int64_t y = 0; y < to.rows; ++y)
            pixels.transform_row(to.start + y * to.row_stride, from.start + y * from.row_stride, to.columns);
    }
    return JORM_OK;
}
