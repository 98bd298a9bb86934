// Entries over single pixels: arithmetic, comparison, conversion, copies, fills, resizing, matrices, statistics.
#include "entry_calls.hpp"

static const fuzz::Entry table[] = {
    JORM_FUZZ_ENTRY(JormAdd, "dSS"),          JORM_FUZZ_ENTRY(JormSub, "dSS"),         JORM_FUZZ_ENTRY(JormRSub, "dSS"),
    JORM_FUZZ_ENTRY(JormMul, "dSS"),          JORM_FUZZ_ENTRY(JormAddq, "dSS"),        JORM_FUZZ_ENTRY(JormSubq, "dSS"),
    JORM_FUZZ_ENTRY(JormRSubq, "dSS"),        JORM_FUZZ_ENTRY(JormAddsq, "dSS"),       JORM_FUZZ_ENTRY(JormSubsq, "dSS"),
    JORM_FUZZ_ENTRY(JormRSubsq, "dSS"),       JORM_FUZZ_ENTRY(JormMulq, "dSS"),        JORM_FUZZ_ENTRY(JormDiv, "dSS"),
    JORM_FUZZ_ENTRY(JormDivr, "dSS"),         JORM_FUZZ_ENTRY(JormRDiv, "dSS"),        JORM_FUZZ_ENTRY(JormRDivr, "dSS"),
    JORM_FUZZ_ENTRY(JormAddC, "dS"),          JORM_FUZZ_ENTRY(JormSubC, "dS"),         JORM_FUZZ_ENTRY(JormRSubC, "dS"),
    JORM_FUZZ_ENTRY(JormMulC, "dS"),          JORM_FUZZ_ENTRY(JormAddqC, "dS"),        JORM_FUZZ_ENTRY(JormSubqC, "dS"),
    JORM_FUZZ_ENTRY(JormRSubqC, "dS"),        JORM_FUZZ_ENTRY(JormAddsqC, "dS"),       JORM_FUZZ_ENTRY(JormSubsqC, "dS"),
    JORM_FUZZ_ENTRY(JormRSubsqC, "dS"),       JORM_FUZZ_ENTRY(JormMulqC, "dS"),        JORM_FUZZ_ENTRY(JormDivC, "dS"),
    JORM_FUZZ_ENTRY(JormDivrC, "dS"),         JORM_FUZZ_ENTRY(JormRDivC, "dS"),        JORM_FUZZ_ENTRY(JormRDivrC, "dS"),
    JORM_FUZZ_ENTRY(JormSigmoidAlpha, "dS"),  JORM_FUZZ_ENTRY(JormNegate, "dS"),       JORM_FUZZ_ENTRY(JormNegateq, "dS"),
    JORM_FUZZ_ENTRY(JormExp, "dS"),           JORM_FUZZ_ENTRY(JormLn, "dS"),           JORM_FUZZ_ENTRY(JormNot, "dS"),
    JORM_FUZZ_ENTRY(JormMulAdd, "dSSS"),      JORM_FUZZ_ENTRY(JormMulSub, "dSSS"),     JORM_FUZZ_ENTRY(JormMulRSub, "dSSS"),
    JORM_FUZZ_ENTRY(JormMulAddC, "dSS"),      JORM_FUZZ_ENTRY(JormMulSubC, "dSS"),     JORM_FUZZ_ENTRY(JormMulRSubC, "dSS"),
    JORM_FUZZ_ENTRY(JormMulAddCC, "dS"),      JORM_FUZZ_ENTRY(JormMulSubCC, "dS"),     JORM_FUZZ_ENTRY(JormMulRSubCC, "dS"),
    JORM_FUZZ_ENTRY(JormAbsDiff, "dSS"),      JORM_FUZZ_ENTRY(JormMin, "dSS"),         JORM_FUZZ_ENTRY(JormMax, "dSS"),
    JORM_FUZZ_ENTRY(JormAnd, "dSS"),          JORM_FUZZ_ENTRY(JormOrr, "dSS"),         JORM_FUZZ_ENTRY(JormXor, "dSS"),
    JORM_FUZZ_ENTRY(JormAbsDiffC, "dS"),      JORM_FUZZ_ENTRY(JormMinC, "dS"),         JORM_FUZZ_ENTRY(JormMaxC, "dS"),
    JORM_FUZZ_ENTRY(JormAndC, "dS"),          JORM_FUZZ_ENTRY(JormOrrC, "dS"),         JORM_FUZZ_ENTRY(JormXorC, "dS"),
    JORM_FUZZ_ENTRY(JormCompare, "dSS"),      JORM_FUZZ_ENTRY(JormCompareC, "dS"),     JORM_FUZZ_ENTRY(JormECompare, "dSS"),
    JORM_FUZZ_ENTRY(JormECompareC, "dS"),     JORM_FUZZ_ENTRY(JormGain, "dS"),         JORM_FUZZ_ENTRY(JormConvert, "ds"),
    JORM_FUZZ_ENTRY(JormVConvert, "ds"),      JORM_FUZZ_ENTRY(JormCopy, "ds"),         JORM_FUZZ_ENTRY(JormCopyEx, "dsm"),
    JORM_FUZZ_ENTRY(JormFill, "d"),           JORM_FUZZ_ENTRY(JormFillEx, "dM"),       JORM_FUZZ_ENTRY(JormFillEx2, "dM"),
    JORM_FUZZ_ENTRY(JormMulMM, "dss"),        JORM_FUZZ_ENTRY(JormMulMV, "dss"),       JORM_FUZZ_ENTRY(JormMulMV_n, "dss"),
    JORM_FUZZ_ENTRY(JormResize, "ds"),        JORM_FUZZ_ENTRY(JormEResize, "ds"),      JORM_FUZZ_ENTRY(JormHistogram, "s"),
    JORM_FUZZ_ENTRY(JormHistogramEx, "sm"),   JORM_FUZZ_ENTRY(JormSum, "s"),           JORM_FUZZ_ENTRY(JormMean, "s"),
    JORM_FUZZ_ENTRY(JormSumEx, "sm"),         JORM_FUZZ_ENTRY(JormMeanEx, "sm"),       JORM_FUZZ_ENTRY(JormMinmax, "s"),
    JORM_FUZZ_ENTRY(JormMinmaxEx, "sm"),      JORM_FUZZ_ENTRY(JormCountRelBox, "s"),   JORM_FUZZ_ENTRY(JormThreshold, "dS"),
    JORM_FUZZ_ENTRY(JormComputeThresholdByOtsu, "s"),
};

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) { return fuzz::run_any(table, data, size); }
