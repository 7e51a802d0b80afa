// The three services over the process heap and OpenMP.
#include "ulkcore.h"

#include <cstdlib>

#if defined(_OPENMP)
#include <omp.h>
#endif

void* ulkMalloc(int32_t size) { return size < 1 ? nullptr : std::malloc(static_cast<size_t>(size)); }

void ulkFree(void* pointer) { std::free(pointer); }

int32_t ownGetNumThreads() {
#if defined(_OPENMP)
  return omp_get_max_threads();
#else
  return 1;
#endif
}
