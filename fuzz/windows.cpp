// Entries over neighbourhoods.
#include "entry_calls.hpp"

static const fuzz::Entry table[] = {
    JORM_FUZZ_ENTRY(JormFilter, "dw"),         JORM_FUZZ_ENTRY(JormMorphop, "dw"), JORM_FUZZ_ENTRY(JormSepFilter, "dw"),
    JORM_FUZZ_ENTRY(JormGaussianFilter, "dw"), JORM_FUZZ_ENTRY(JormFirefly, "dw"), JORM_FUZZ_ENTRY(JormFireflyEx, "dw"),
};

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) { return fuzz::run_any(table, data, size); }
