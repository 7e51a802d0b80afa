// A program with memory and thread count of its own under the static library.
#include <stdio.h>
#include <stdlib.h>
#include <ulkch.h>
#include <ulkcore.h>

static int blocks;

void* ulkMalloc(int32_t size) {
  ++blocks;
  return malloc((size_t)size);
}

void ulkFree(void* pointer) {
  --blocks;
  free(pointer);
}

int32_t ownGetNumThreads(void) { return 1; }

int main(void) {
  ulkRegExpState* expression;
  int32_t errorOffset;
  if (ulksRegExpInitAlloc("a+", "", &expression, &errorOffset) != ulkOk) return 1;
  const int held = blocks;
  ulksRegExpFree(expression);
  printf("blocks: %d, then %d\n", held, blocks);
  return held > 0 && blocks == 0 ? 0 : 1;
}
