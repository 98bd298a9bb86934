#include <jorm.h>
#include <stdio.h>

int main(void) {
    printf("libJorm %x, %s\n", (unsigned)jorm_version(), jorm_level_str());
    return jorm_version() != 0x010000;
}
