/// @file
/// ulkcore: the services that ulkch takes from its host. A program that wants its own heap or its own number
/// of threads links another library with these three functions in place of this one; it must define all
/// three.
#ifndef ULKCORE_H
#define ULKCORE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Allocates a block of at least `size` bytes from the process's heap. The contents are undefined.
/// @param[in] size  the size in bytes
/// @return the block, aligned for every fundamental type; null when `size` is below 1 or no memory is left.
void* ulkMalloc(int32_t size);

/// Releases a block from ulkMalloc. Null is accepted and ignored.
/// @param[in] pointer  the block
void ulkFree(void* pointer);

/// The number of threads that the library may use for parallel work inside one call: as many as OpenMP would
/// give a parallel region of the calling thread. Without other settings (OMP_NUM_THREADS,
/// omp_set_num_threads) those are the processors that the process may run on.
/// @return at least 1.
int32_t ownGetNumThreads(void);

#ifdef __cplusplus
}
#endif

#endif
