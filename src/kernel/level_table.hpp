// Tables that every level defines, seen from the code that chooses among them.
//
//     JORM_LEVEL_TABLE(const Row, convert_rows);         at namespace scope, in namespace jorm
//     ... JORM_OF_LEVEL(convert_rows, level(options))    the table of that level
#pragma once
#include "xe/level.hpp"

#if defined(__x86_64__)
#define JORM_LEVEL_TABLE(type, name)                                                                                   \
    namespace base {                                                                                                   \
    extern type name[];                                                                                                \
    }                                                                                                                  \
    namespace avx2 {                                                                                                   \
    extern type name[];                                                                                                \
    }                                                                                                                  \
    namespace avx512 {                                                                                                 \
    extern type name[];                                                                                                \
    }                                                                                                                  \
    static_assert(level_count == 3)
#define JORM_OF_LEVEL(name, which)                                                                                     \
    ((which) == level_avx512 ? avx512::name : (which) == level_avx2 ? avx2::name : base::name)
#else
#define JORM_LEVEL_TABLE(type, name)                                                                                   \
    namespace base {                                                                                                   \
    extern type name[];                                                                                                \
    }
#define JORM_OF_LEVEL(name, which) ((void)(which), base::name)
#endif
