// Memory, or the end of the program.
#ifndef ULKGREP_MEMORY_H
#define ULKGREP_MEMORY_H

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

// As realloc, for a number of elements of a size.
static inline void* reallocate(void* memory, size_t count, size_t size) {
  void* moved = count <= SIZE_MAX / size ? realloc(memory, count * size) : NULL;
  if (moved) return moved;
  fputs("ulkgrep: out of memory\n", stderr);
  exit(2);
}

#endif
