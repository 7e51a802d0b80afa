// How an exported function is defined: with the declaration's linkage, and with the stack realigned on entry,
// because a 32-bit caller may come with a stack that is aligned to 4 bytes only.
#pragma once

#include "ulkch.h"

#if defined(__i386__)
#define ULK_EXPORT __attribute__((force_align_arg_pointer))
#else
#define ULK_EXPORT
#endif
