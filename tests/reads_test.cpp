// Nothing is read outside an array: it begins or ends where readable memory does.
#include "jorm.h"
#include "support/picture.hpp"

#include <sys/mman.h>

namespace {

// Pages between two that cannot be touched.
struct Pages {
    static constexpr size_t page = 4096, bytes = 16 * page;
    char *all = static_cast<char *>(
        mmap(nullptr, bytes + 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    Pages() {
        mprotect(all, page, PROT_NONE);
        mprotect(all + page + bytes, page, PROT_NONE);
    }
    ~Pages() { munmap(all, bytes + 2 * page); }
    // A row of pixels of which only the first `channels` channels belong to the array.
    jorm_array row(uint32_t type, int width, int pixel, int channels, bool at_end) const {
        const int size = bytes_of(type), span = ((width - 1) * pixel + channels) * size;
        const int32_t extent[] = {1, width, channels}, stride[] = {width * pixel * size, pixel * size, size};
        jorm_array a;
        _jorm_array__$xtrn(&a, type, 3, extent, stride, all + page + (at_end ? bytes - size_t(span) : 0));
        return a;
    }
};

TEST(Reads, StayInside) {
    const Pages from, by, to;
    Env xe;
    const double values[4] = {1, 2, 3, 4};
    double sums[4];
    jorm_minmax extrema;
    extrema.request = JORM_WANT_MIN | JORM_WANT_MAX;
    for (int level = 0; level < jorm::level_count; ++level)
        for (uint32_t type : {JORM_U8, JORM_S16, JORM_S32, JORM_F32, JORM_F64})
            for (int i = 0; i < 5 * 330 * 2; ++i) {
                use_level(level);
                const int pixel = 1 + i % 5, width = 1 + i / 10, channels = type == JORM_F64 ? 1 : 1 + i % 3 % pixel;
                const bool end = i / 5 % 2;
                const jorm_array a = from.row(type, width, pixel, channels, end),
                                 d = to.row(type, width, 4, channels, end);
                const jorm_array m = by.row(JORM_U8, width, 1, 1, end), f = to.row(JORM_F32, width, 4, channels, end);
                ASSERT_EQ(JormCopy(xe, 0, &d, &a, nullptr, nullptr), 0);
                const jorm_array part = to.row(type, 1 + width * 2 / 3, 4, channels, end);
                ASSERT_EQ(JormResize(xe, 0, &part, &a, nullptr, nullptr, nullptr), 0);
                ASSERT_EQ(JormCopyEx(xe, 0, &d, &a, &m, nullptr, nullptr, nullptr), 0);
                ASSERT_EQ(JormFillEx(xe, 0, &d, &m, nullptr, nullptr, values), type == JORM_F64 ? JORM_ENOTSUP : 0);
                if (type == JORM_F64) continue;
                vrng range[4] = {{0, 1}, {0, 1}, {0, 1}, {0, 1}}, whole[4] = {{0, 255}, {0, 255}, {0, 255}, {0, 255}};
                const auto add = bytes_of(type) < 4 ? JormAddq : JormAdd;
                ASSERT_EQ(add(xe, 0, &d, &a, &a, nullptr, nullptr, nullptr, 0, 0), 0);
                ASSERT_EQ(JormMul(xe, 0, &d, &a, &a, nullptr, nullptr, nullptr, -8, 0), 0);
                ASSERT_EQ(JormSum(xe, 0, &a, nullptr, sums), 0);
                ASSERT_EQ(JormMinmax(xe, 0, &a, nullptr, &extrema), 0);
                ASSERT_EQ(JormVConvert(xe, 0, &f, &a, nullptr, nullptr, nullptr, nullptr), 0);
                ASSERT_EQ(JormVConvert(xe, 0, &f, &a, nullptr, nullptr, range, whole), 0);
                ASSERT_EQ(JormGain(xe, 0, &d, &a, values, values, nullptr, nullptr), 0);
                ASSERT_EQ(JormMin(xe, 0, &d, &a, &d, nullptr, nullptr, nullptr), 0);
            }
}

} // namespace
