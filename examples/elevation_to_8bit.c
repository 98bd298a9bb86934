/* A grid of elevations becomes an 8-bit picture: the lowest measured point black, the highest white. */
#include <jorm.h>
#include <stdio.h>

int main(void) {
    const float metres[3][4] = {{312, 330.5f, 355, 341}, {305, 348, 402.5f, 377}, {298.5f, 321, 365, 358}};
    uint8_t grey[3][4];
    jorm_array src, dst;
    jorm_array_make(&src, JORM_F32, 3, 4, 1, 0, metres);
    jorm_array_make(&dst, JORM_U8, 3, 4, 1, 0, grey);

    jorm_minmax mm = {JORM_WANT_MIN | JORM_WANT_MAX, {{0}}, {{0}}};
    vrng black_to_white = {0, 255};
    _G_jorm_use_simd = 1;
    jorm_xe *xe = JormXEopen(NULL, NULL, 0);
    int64_t status = JormMinmax(xe, 0, &src, NULL, &mm);
    if (status == JORM_OK) status = JormVConvert(xe, 0, &dst, &src, NULL, NULL, &black_to_white, NULL);
    JormXEclose(xe);

    printf("%s: from %g m (row %d, column %d) to %g m (row %d, column %d)\n", jorm_status_str(status), mm.min[0].f,
           mm.min[0].row, mm.min[0].column, mm.max[0].f, mm.max[0].row, mm.max[0].column);
    for (int i = 0; i < 12; ++i) printf("%4d%s", grey[i / 4][i % 4], i % 4 == 3 ? "\n" : "");
    return status != JORM_OK || grey[2][0] != 0 || grey[1][2] != 255 || grey[0][1] != 78;
}
