#include <jorm.h>
#include <stdio.h>

int main(void) {
    uint8_t x[6] = {0, 50, 100, 150, 200, 250}, y[6] = {10, 10, 10, 10, 100, 100}, sum[6];
    jorm_array a, b, dst;                        /* descriptors: the memory stays yours */
    jorm_array_make(&a, JORM_U8, 2, 3, 1, 0, x); /* 2 rows of 3 pixels of 1 channel, no gaps */
    jorm_array_make(&b, JORM_U8, 2, 3, 1, 0, y);
    jorm_array_make(&dst, JORM_U8, 2, 3, 1, 0, sum);

    _G_jorm_use_simd = 1;                    /* the best kernels that this processor runs */
    jorm_xe *xe = JormXEopen(NULL, NULL, 0); /* scratch memory for all calls */
    int64_t status = JormAddq(xe, 0, &dst, &a, &b, NULL, NULL, NULL, 0, 0);
    JormXEclose(xe);

    printf("%s:", jorm_status_str(status));
    for (int i = 0; i < 6; ++i) printf(" %d", sum[i]); /* 10 60 110 160 255 255 */
    printf("\n");
    return status != JORM_OK || sum[5] != 255;
}
