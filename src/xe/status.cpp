#include "jorm/xe.h"

const char *jorm_status_str(int64_t status) {
    switch (status) {
    case JORM_OK:
        return "success";
    case JORM_EINVAL:
        return "invalid argument";
    case JORM_EEMPTY:
        return "empty region of interest";
    case JORM_ENOTSUP:
        return "unsupported combination of types, channels or axes";
    case JORM_ENOMEM:
        return "out of memory";
    case JORM_ENOTIMP:
        return "not implemented";
    case JORM_EAGAIN:
        return "input needs a prepared copy";
    default:
        return "unknown status";
    }
}

uint32_t jorm_version(void) { return 0x010000; }
