/* One channel of an interleaved picture, inside a region: strides and a site say which samples take part. */
#include <jorm.h>
#include <stdio.h>

int main(void) {
    uint8_t rgb[2 * 3 * 3] = {0};
    const int32_t extent[3] = {2, 3, 1}, stride[3] = {9, 3, 1};
    jorm_array green;
    _jorm_array__$xtrn(&green, JORM_U8, 3, extent, stride, rgb + 1);

    const jorm_site right = {{0, 0, 1, 0}, {1, 2, 2, 1}}; /* origin and size: planes, rows, pixels, channels */
    const double amount = 200;
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
