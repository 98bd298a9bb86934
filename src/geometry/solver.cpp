// Closed forms in f64. The order of the operations is part of the interface: it fixes the bits of the results.
#include "geometry/family.hpp"

namespace jorm {
namespace {

static_assert(sizeof(jorm_r2d_moment1) == 16 && sizeof(jorm_r2d_moment2) == 24);

// The smaller value first; with a NaN, and when equal, (r2, r1).
double *ordered(double *out, double r1, double r2) {
    const bool rising = r2 > r1;
    out[0] = rising ? r1 : r2;
    out[1] = rising ? r2 : r1;
    return out;
}

// Of the matrix (a, b; b, d).
double *eigenvalues(double *out, double a, double b, double d) {
    const double mean = (d + a) * 0.5;
    const double r = std::sqrt((d - a) * (d - a) + (b + b) * (b + b)) * 0.5;
    return ordered(out, mean + r, mean - r);
}

double principal_angle(double a, double b, double d) { return 0.5 * std::atan2(b + b, d - a); }

} // namespace
} // namespace jorm

using namespace jorm;

double *jorm_f64_quadequ_solve(double *out, double a, double b, double c) {
    const double h = 1.0 / (a + a);
    const double d = std::sqrt(b * b - (c + c) * (a + a)) * h;
    return ordered(out, d - h * b, -(h * b) - d);
}

double *jorm_f64_quadequ_solve_$simple(double *out, double p, double q) {
    const double s = std::sqrt(p * p - 4.0 * q);
    return ordered(out, s * 0.5 - p * 0.5, -(p * 0.5) - s * 0.5);
}

double *jorm_f64_quadequ_solve_$mm(double *out, double m, double q) {
    const double s = std::sqrt(m * m - q);
    return ordered(out, m + s, m - s);
}

double *jorm_f64_symmat2x2_eigvals(double *out, const double *matrix) {
    return eigenvalues(out, matrix[0], matrix[1], matrix[3]);
}

double jorm_f64_symmat2x2_xeigvals(double *out, const double *matrix) {
    const double angle = principal_angle(matrix[0], matrix[1], matrix[3]);
    eigenvalues(out, matrix[0], matrix[1], matrix[3]);
    return angle;
}

jorm_r2d_moment2 *jorm_r2d_moment2_centralize(jorm_r2d_moment2 *out, const jorm_r2d_moment2 *moments,
                                              const jorm_r2d_pt *centroid) {
    const double x0 = centroid->x, x1 = centroid->y;
    *out = {moments->m00 - x0 * x0, moments->m01 - x0 * x1, moments->m11 - x1 * x1};
    return out;
}

jorm_r2d_moment2 *jorm_r2d_moment2_centralize_$I(jorm_r2d_moment2 *moments, const jorm_r2d_pt *centroid) {
    return jorm_r2d_moment2_centralize(moments, moments, centroid);
}

double *jorm_r2d_moment2c_covariance(double *out, const jorm_r2d_moment2 *moments) {
    const jorm_r2d_moment2 m = *moments;
    out[0] = m.m00;
    out[1] = m.m01;
    out[2] = m.m01;
    out[3] = m.m11;
    return out;
}

double *jorm_r2d_moment2c_eigvals(double *out, const jorm_r2d_moment2 *moments) {
    return eigenvalues(out, moments->m00, moments->m01, moments->m11);
}

double jorm_r2d_moment2c_xeigvals(double *out, const jorm_r2d_moment2 *moments) {
    const double angle = jorm_r2d_moment2c_rotation(moments);
    eigenvalues(out, moments->m00, moments->m01, moments->m11);
    return angle;
}

double jorm_r2d_moment2c_rotation(const jorm_r2d_moment2 *moments) {
    return principal_angle(moments->m00, moments->m01, moments->m11);
}
