// Entries over single pixels: arithmetic, comparison, conversion, copies, fills, resizing, matrices, statistics.
#include "entry_calls.hpp"

static const fuzz::Entry table[] = {
    JORM_FUZZ_ENTRY(JormAdd, "dss"),          JORM_FUZZ_ENTRY(JormSub, "dss"),         JORM_FUZZ_ENTRY(JormRSub, "dss"),
    JORM_FUZZ_ENTRY(JormMul, "dss"),          JORM_FUZZ_ENTRY(JormAddq, "dss"),        JORM_FUZZ_ENTRY(JormSubq, "dss"),
    JORM_FUZZ_ENTRY(JormRSubq, "dss"),        JORM_FUZZ_ENTRY(JormAddsq, "dss"),       JORM_FUZZ_ENTRY(JormSubsq, "dss"),
    JORM_FUZZ_ENTRY(JormRSubsq, "dss"),       JORM_FUZZ_ENTRY(JormMulq, "dss"),        JORM_FUZZ_ENTRY(JormDiv, "dss"),
    JORM_FUZZ_ENTRY(JormDivr, "dss"),         JORM_FUZZ_ENTRY(JormRDiv, "dss"),        JORM_FUZZ_ENTRY(JormRDivr, "dss"),
    JORM_FUZZ_ENTRY(JormAddC, "ds"),          JORM_FUZZ_ENTRY(JormSubC, "ds"),         JORM_FUZZ_ENTRY(JormRSubC, "ds"),
    JORM_FUZZ_ENTRY(JormMulC, "ds"),          JORM_FUZZ_ENTRY(JormAddqC, "ds"),        JORM_FUZZ_ENTRY(JormSubqC, "ds"),
    JORM_FUZZ_ENTRY(JormRSubqC, "ds"),        JORM_FUZZ_ENTRY(JormAddsqC, "ds"),       JORM_FUZZ_ENTRY(JormSubsqC, "ds"),
    JORM_FUZZ_ENTRY(JormRSubsqC, "ds"),       JORM_FUZZ_ENTRY(JormMulqC, "ds"),        JORM_FUZZ_ENTRY(JormDivC, "ds"),
    JORM_FUZZ_ENTRY(JormDivrC, "ds"),         JORM_FUZZ_ENTRY(JormRDivC, "ds"),        JORM_FUZZ_ENTRY(JormRDivrC, "ds"),
    JORM_FUZZ_ENTRY(JormSigmoidAlpha, "ds"),  JORM_FUZZ_ENTRY(JormNegate, "ds"),       JORM_FUZZ_ENTRY(JormNegateq, "ds"),
    JORM_FUZZ_ENTRY(JormExp, "ds"),           JORM_FUZZ_ENTRY(JormLn, "ds"),           JORM_FUZZ_ENTRY(JormNot, "ds"),
    JORM_FUZZ_ENTRY(JormMulAdd, "dsss"),      JORM_FUZZ_ENTRY(JormMulSub, "dsss"),     JORM_FUZZ_ENTRY(JormMulRSub, "dsss"),
    JORM_FUZZ_ENTRY(JormMulAddC, "dss"),      JORM_FUZZ_ENTRY(JormMulSubC, "dss"),     JORM_FUZZ_ENTRY(JormMulRSubC, "dss"),
    JORM_FUZZ_ENTRY(JormMulAddCC, "ds"),      JORM_FUZZ_ENTRY(JormMulSubCC, "ds"),     JORM_FUZZ_ENTRY(JormMulRSubCC, "ds"),
    JORM_FUZZ_ENTRY(JormAbsDiff, "dss"),      JORM_FUZZ_ENTRY(JormMin, "dss"),         JORM_FUZZ_ENTRY(JormMax, "dss"),
    JORM_FUZZ_ENTRY(JormAnd, "dss"),          JORM_FUZZ_ENTRY(JormOrr, "dss"),         JORM_FUZZ_ENTRY(JormXor, "dss"),
    JORM_FUZZ_ENTRY(JormAbsDiffC, "ds"),      JORM_FUZZ_ENTRY(JormMinC, "ds"),         JORM_FUZZ_ENTRY(JormMaxC, "ds"),
    JORM_FUZZ_ENTRY(JormAndC, "ds"),          JORM_FUZZ_ENTRY(JormOrrC, "ds"),         JORM_FUZZ_ENTRY(JormXorC, "ds"),
    JORM_FUZZ_ENTRY(JormCompare, "dss"),      JORM_FUZZ_ENTRY(JormCompareC, "ds"),     JORM_FUZZ_ENTRY(JormECompare, "dss"),
    JORM_FUZZ_ENTRY(JormECompareC, "ds"),     JORM_FUZZ_ENTRY(JormGain, "ds"),         JORM_FUZZ_ENTRY(JormConvert, "ds"),
    JORM_FUZZ_ENTRY(JormVConvert, "ds"),      JORM_FUZZ_ENTRY(JormCopy, "ds"),         JORM_FUZZ_ENTRY(JormCopyEx, "dsm"),
    JORM_FUZZ_ENTRY(JormFill, "d"),           JORM_FUZZ_ENTRY(JormFillEx, "dm"),       JORM_FUZZ_ENTRY(JormFillEx2, "dm"),
    JORM_FUZZ_ENTRY(JormMulMM, "dss"),        JORM_FUZZ_ENTRY(JormMulMV, "dss"),       JORM_FUZZ_ENTRY(JormMulMV_n, "dss"),
    JORM_FUZZ_ENTRY(JormResize, "ds"),        JORM_FUZZ_ENTRY(JormEResize, "ds"),      JORM_FUZZ_ENTRY(JormHistogram, "s"),
    JORM_FUZZ_ENTRY(JormHistogramEx, "sm"),   JORM_FUZZ_ENTRY(JormSum, "s"),           JORM_FUZZ_ENTRY(JormMean, "s"),
    JORM_FUZZ_ENTRY(JormSumEx, "sm"),         JORM_FUZZ_ENTRY(JormMeanEx, "sm"),       JORM_FUZZ_ENTRY(JormMinmax, "s"),
    JORM_FUZZ_ENTRY(JormMinmaxEx, "sm"),      JORM_FUZZ_ENTRY(JormCountRelBox, "s"),   JORM_FUZZ_ENTRY(JormThreshold, "ds"),
    JORM_FUZZ_ENTRY(JormComputeThresholdByOtsu, "s"),
};

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) { return fuzz::run_any(table, data, size); }
