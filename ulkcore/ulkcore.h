#pragma once
#include <cstdint>
extern "C" {
void* ulkMalloc(int32_t size);
void ulkFree(void* pointer);
int32_t ownGetNumThreads(void);
}
