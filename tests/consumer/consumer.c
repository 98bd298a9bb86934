#include <jorm.h>
#include <stdio.h>

int main(void) {
    uint8_t pixels[2] = {1, 2};
    jorm_array picture, view;
    jorm_site site;
    int64_t status = jorm_array_make(&picture, JORM_U8, 1, 2, 1, 0, pixels);
    if (status == JORM_OK) status = jorm_array_flip(&view, &picture, 0, 1);
    if (status == JORM_OK) status = JormNot(NULL, 0, &view, NULL, jorm_site_make(&site, 0, 0, 1, 1), NULL);
    printf("libJorm %x, %s: %d %d\n", (unsigned)jorm_version(), jorm_level_str(), pixels[0], pixels[1]);
    return jorm_version() != 0x010000 || status != JORM_OK || pixels[0] != 1 || pixels[1] != 253;
}
