// Copies with borders.
#include "entry_calls.hpp"

static const fuzz::Entry table[] = {JORM_FUZZ_ENTRY(JormCopyMkb, "dw"), JORM_FUZZ_ENTRY(JormCopyRMkb, "dw")};

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) { return fuzz::run_any(table, data, size); }
