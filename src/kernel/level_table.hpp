// Tables that every level defines, seen from the code that chooses among them.
//
//     JORM_LEVEL_TABLE(const Row, convert_rows);         at namespace scope, in namespace jorm
//     JORM_LEVEL_TABLE(const Rows, rows, ::add);         the same for add::rows, in a namespace of the level
//     ... JORM_OF_LEVEL(convert_rows, level(options))    the table of that level
//     const Rows *const of[] = JORM_AT_LEVELS(add::rows) the tables of all levels
#pragma once
#include "xe/level.hpp"

#define JORM_TABLE_AT(level, type, name)                                                                               \
    namespace level {                                                                                                  \
    extern type name[];                                                                                                \
    }
#if defined(__x86_64__)
#define JORM_LEVEL_TABLE(type, name, ...)                                                                              \
    JORM_TABLE_AT(base __VA_ARGS__, type, name)                                                                        \
    JORM_TABLE_AT(avx2 __VA_ARGS__, type, name)                                                                        \
    JORM_TABLE_AT(avx512 __VA_ARGS__, type, name)                                                                      \
    static_assert(level_count == 3)
#define JORM_OF_LEVEL(name, which)                                                                                     \
    ((which) == level_avx512 ? avx512::name : (which) == level_avx2 ? avx2::name : base::name)
#define JORM_AT_LEVELS(name)                                                                                           \
    { base::name, avx2::name, avx512::name }
#else
#define JORM_LEVEL_TABLE(type, name, ...)                                                                              \
    JORM_TABLE_AT(base __VA_ARGS__, type, name)                                                                        \
    static_assert(level_count == 3)
#define JORM_OF_LEVEL(name, which) ((void)(which), base::name)
#define JORM_AT_LEVELS(name)                                                                                           \
    { base::name, base::name, base::name }
#endif
