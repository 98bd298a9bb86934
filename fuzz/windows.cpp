// Entries over neighbourhoods.
#include "entry_calls.hpp"

static const fuzz::Entry table[] = {
    JORM_FUZZ_ENTRY(JormFilter, "ds"),         JORM_FUZZ_ENTRY(JormMorphop, "ds"), JORM_FUZZ_ENTRY(JormSepFilter, "ds"),
    JORM_FUZZ_ENTRY(JormGaussianFilter, "ds"), JORM_FUZZ_ENTRY(JormFirefly, "ds"), JORM_FUZZ_ENTRY(JormFireflyEx, "ds"),
};

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) { return fuzz::run_any(table, data, size); }
