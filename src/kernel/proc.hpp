// Procedures of any signature in one type, as kernel tables and packed calls hold them.
#pragma once
#include "jorm/types.h"

namespace jorm {

template <class F> jorm_proc *to_proc(F *f) { return reinterpret_cast<jorm_proc *>(reinterpret_cast<void (*)()>(f)); }
template <class F> F *from_proc(jorm_proc *p) { return reinterpret_cast<F *>(reinterpret_cast<void (*)()>(p)); }

} // namespace jorm
