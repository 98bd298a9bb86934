/// \file
/// libJorm for C++20: the C interface with typed views, named options, environments that end themselves, and errors as
/// exceptions or results. Header only; everything lies in namespace jorm (its inline part cxx keeps symbols apart from
/// those of the library).
///
///     #include <jorm/jorm.hpp>
///
///     std::vector<uint8_t> pixels(480 * 640), smooth(pixels.size());
///     jorm::view src(pixels, {480, 640}), dst(smooth, {480, 640});
///     jorm::gaussian(dst, src, {5, 5}, {.sigma = {1.2}});
///     double mean = jorm::mean(dst)[0];
///
/// How functions look
/// - The destination comes first, then the sources (or constants), what the operation needs, and named options last.
/// - Options that most have: `.region`, the part of the destination (of the source, where nothing is written) to work
///   on; `.at`, where the source's part starts; `.mask`; `.env`, an environment other than that of the thread.
/// - A failing call throws jorm::error and leaves the destination as it was. With the policy nothrow as its template
///   argument, `jorm::mean<jorm::nothrow>(dst)`, it returns a jorm::result instead.
/// - Views do not own pixels and threads do not share environments: calls on different threads are independent.
///
/// What an operation computes in detail stands in the header of the C interface that each part names. Views, records
/// and environments give what its calls take by get() and record(), so that both can be mixed.
#ifndef JORM_JORM_HPP
#define JORM_JORM_HPP

#include "jorm/cxx/environment.hpp" // errors, environments
#include "jorm/cxx/view.hpp"        // views, rectangles

#include "jorm/cxx/arith.hpp"    // add, sub, mul, div, mul_add, min, max, bit_and, exp, ...
#include "jorm/cxx/filter.hpp"   // box_filter, gaussian, separable_filter, firefly, erode, open, tophat, box_count, ...
#include "jorm/cxx/geometry.hpp" // convex_hull, min_area_quad, ellipse, quick_sort, ...
#include "jorm/cxx/pixels.hpp"   // copy, fill, gain, convert, compare, threshold, resize, matmul, ...
#include "jorm/cxx/regions.hpp"  // flood, mser
#include "jorm/cxx/stats.hpp"    // sum, mean, minmax, histogram

#endif
