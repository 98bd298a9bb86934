/* libJorm: the execution environment, scratch memory, storages, the vectorisation switch.
 *
 * Every operation takes an environment first and draws its scratch memory from it. An environment serves one thread at
 * a time; threads use environments of their own. Two ways to have one:
 *
 *     jorm_xe *xe = JormXEopen(NULL, NULL, 0);   // on the heap, null without memory
 *     ...
 *     JormXEclose(xe);
 *
 *     jorm_xe xe = {0};                          // in memory of the caller
 *     JormXEinit(&xe, NULL);
 *     ...
 *     JormXEclose(&xe);
 *
 * Scratch memory is a stack that keeps what it once obtained: after the first calls of a kind no operation touches the
 * heap, and what is kept is bounded by the largest need so far, not by the number of calls.
 * A null environment is accepted everywhere: functions then do nothing and return null.
 */
#ifndef JORM_XE_H
#define JORM_XE_H

#include "jorm/types.h"

/* Bits of jorm_xe::flags. */
enum {
    JORM_XE_INITIALISED = 1,
    JORM_XE_OWNS_STORAGE = 16 /* JormXEopen made the record; it lives in the storage that closing it closes */
};

/* The environment, 104 bytes, zero-filled before first use and never moved while in use. */
struct jorm_xe {
    void *stack; /* the storage that scratch memory comes from; null until the first request */
    uint64_t flags;
    uint64_t size_hint;         /* block size of a stack of its own; 0 leaves the choice to the library */
    uint64_t inline_storage[6]; /* where a stack of its own lives */
    uint64_t saved_state[4];    /* the stack's state that JormXEclear and JormXEfini return to */
};

/* ---- Life of an environment ---- */

/* Opens an environment. With xe given: zero-fills it and initialises it on `stack` (null: a stack of its own, created
 * with the first request). With xe null: makes the record inside `stack`, or inside a new storage when that is null
 * too; JormXEclose then closes that storage, also one that the caller gave. `size` is the block size of the storage, a
 * hint (0: the library's choice): larger requests get larger blocks. Returns the record; null without memory. */
JORM_API jorm_xe *JormXEopen(jorm_xe *xe, void *stack, size_t size);

/* Initialises a zero-filled record on `stack` (null: a stack of its own) and remembers the stack's state. A record that
 * is initialised already stays as it is. JormXEinit leaves the block size to the library. Both return xe. */
JORM_API jorm_xe *JormXEinit2(jorm_xe *xe, void *stack, size_t size);
JORM_API jorm_xe *JormXEinit(jorm_xe *xe, void *stack);

/* Ends the use: destroys a stack of its own, rolls any other one back to the remembered state. No effect on a record
 * that is not initialised. Returns xe. */
JORM_API jorm_xe *JormXEfini(jorm_xe *xe);

/* JormXEfini, then closes the storage that the record owns and lives in. */
JORM_API void JormXEclose(jorm_xe *xe);

/* Releases all scratch memory taken since the initialisation; its blocks stay for reuse. Returns xe. */
JORM_API jorm_xe *JormXEclear(jorm_xe *xe);

/* ---- Its stack ---- */

/* The stack in use, created on first use. A record that is still zero-filled counts as initialised from then on. */
JORM_API void *JormXEmmstack(jorm_xe *xe);
/* The same, with a block size (0: as before) for a stack that is still to be created. */
JORM_API void *JormXEinitMmstack(jorm_xe *xe, size_t size);
/* Puts the environment on another stack (null or its inline storage: one of its own), giving up the present one. A
 * record that owns its storage is closed and a new one opened in its place. Returns the record to use from then on;
 * null without memory. JormXEdestroyMmstack(xe) is JormXEresetMmstack(xe, NULL, 0). */
JORM_API jorm_xe *JormXEresetMmstack(jorm_xe *xe, void *stack, size_t size);
JORM_API jorm_xe *JormXEdestroyMmstack(jorm_xe *xe);

/* ---- Scratch memory ---- */

/* A block of scratch memory, not cleared; `align` is a power of two, 0 means 16. Null without memory. */
JORM_API void *JormXEalloca(jorm_xe *xe, size_t bytes, size_t align);
/* Gives a block back; null is allowed. See UlSMEMSTGfree for the order. */
JORM_API void JormXEfreea(jorm_xe *xe, void *p);
/* Snapshot of the stack into 32 bytes at `state` (8-aligned), and the release of everything taken after it. */
JORM_API void *JormXEgetmmsp(jorm_xe *xe, void *state);
JORM_API void JormXEsetmmsp(jorm_xe *xe, const void *state);

/* The same operations on a bare storage: thin names for the functions of the next section. `align` 0 means 16;
 * jorm_mmstack_state returns `state`. */
JORM_API void *jorm_mmstack_open(void *mem, size_t size);
JORM_API void *jorm_mmstack_alloca(void *stack, size_t bytes, size_t align);
JORM_API void jorm_mmstack_freea(void *stack, void *p);
JORM_API void jorm_mmstack_reset(void *stack);
JORM_API void *jorm_mmstack_state(void *stack, void *state);
JORM_API void jorm_mmstack_setstate(void *stack, const void *state);
JORM_API void jorm_mmstack_close(void *stack);
JORM_API void jorm_mmstack_destroy(void *stack); /* as UlMEMSTGdestroy: the same as closing */

/* ---- Storages and the heap ----
 * The interface to the companion base library. A program that links its own definitions of these twelve names into a
 * static libJorm, or preloads them, replaces the ones that come with the library.
 *
 * A storage is a stack of memory blocks. A failed request changes nothing and leaves the storage usable. A null storage
 * is allowed: nothing happens and the result is null. */
enum { JORM_STORAGE_BYTES = 48, JORM_STORAGE_STATE_BYTES = 32 };

/* Opens a storage in 48 bytes at `mem` (8-aligned), or in memory of its own when null. `block` is the size in which
 * memory is obtained, 0 for a default; larger requests get larger blocks. `reserved` is 0. Returns the storage; null
 * without memory. */
JORM_API void *UlSMEMSTGopen(void *mem, size_t block, uint32_t reserved);
/* A block on top of the stack, not cleared. `align` is any power of two, 0 means 16. 0 bytes give a block of its own.
 */
JORM_API void *UlSMEMSTGaalloc(void *stack, size_t bytes, size_t align, uint32_t reserved);
/* Releases a block; null is allowed. A block below the top releases nothing above it: its memory comes back once
 * everything above it is released. */
JORM_API void UlSMEMSTGfree(void *stack, void *p);
/* Takes a snapshot into 32 bytes at `state`; releases everything allocated after a snapshot. A snapshot holds as long
 * as nothing that was allocated before it is released. */
JORM_API void UlSMEMSTGgetstate(void *state, const void *stack);
JORM_API void UlSMEMSTGsetstate(void *stack, const void *state);
/* Releases every block; the memory stays for reuse. */
JORM_API void UlSMEMSTGclear(void *stack);
/* The end of a storage: all its memory goes back to the heap. One that was opened in memory of the caller must be
 * opened again before further use, one in memory of its own is gone. The two do the same here; both exist because the
 * interface has both. The library closes storages that it opened in memory of their own, and destroys those that live
 * in a record; definitions in place of these may tell the two apart. */
JORM_API void UlMEMSTGclose(void *storage);
JORM_API void UlMEMSTGdestroy(void *storage);

/* Heap memory as calloc, realloc and free give it. */
JORM_API void *_UlMcalloc(size_t n, size_t size);
JORM_API void *_UlMrealloc(void *p, size_t size);
JORM_API void _UlMfree(void *p);
JORM_API void UlMfree(void *p);

/* ---- Vectorised kernels ---- */

/* The switch: 0 off, positive on, negative undecided; the first question then turns it off. A host that wants the
 * vectorised kernels sets it to 1 at its start. Results are the same bits either way. */
JORM_API int32_t _G_jorm_use_simd;

/* 1 when a call with these options runs vectorised kernels: the switch is on and JORM_OPT_NO_SIMD is not set. */
JORM_API int32_t jorm_use_simd(uint64_t options);
JORM_API int32_t JormXEuseSimd(jorm_xe *xe, uint64_t options);
/* Decides an undecided switch: turns it off and returns 0. */
JORM_API int32_t __jorm_use_simd(void);

/* The instruction-set level in use: "base", "avx2" or "avx512". */
JORM_API const char *jorm_level_str(void);

/* Cache sizes in bytes that blocking is planned for: constants, not what this processor has. */
JORM_API size_t jorm_level1_dcache_size(void);
JORM_API size_t jorm_level1_icache_size(void);
JORM_API size_t jorm_level2_cache_size(void);

/* ---- About the library ---- */

/* A short English text for a status; "unknown status" for any other value. */
JORM_API const char *jorm_status_str(int64_t status);
/* The version as major << 16 | minor << 8 | patch: 0x010000. */
JORM_API uint32_t jorm_version(void);

#endif
