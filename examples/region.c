/* One channel of an interleaved picture, inside a region: a view and a site say which samples take part. */
#include <jorm.h>
#include <stdio.h>

int main(void) {
    uint8_t rgb[2 * 3 * 3] = {0};
    jorm_array picture, green;
    jorm_array_make(&picture, JORM_U8, 2, 3, 3, 0, rgb);
    jorm_array_channel(&green, &picture, 1);

    jorm_site right;
    jorm_site_make(&right, 0, 1, 2, 2); /* from row 0, pixel 1 on: 2 rows of 2 pixels */
    const double amount = 200;
    _G_jorm_use_simd = 1;
    jorm_xe *xe = JormXEopen(NULL, NULL, 0);
    int64_t status = JormAddqC(xe, 0, &green, NULL, &amount, &right, NULL, 0, 0); /* no source: in place */
    JormXEclose(xe);

    printf("%s:\n", jorm_status_str(status));
    int sum = 0;
    for (int i = 0; i < 18; ++i) {
        printf("%4d%s", rgb[i], i % 9 == 8 ? "\n" : "");
        sum += rgb[i];
    }
    return status != JORM_OK || sum != 4 * 200 || rgb[4] != 200;
}
