// What ulkgrep says on standard error.
#ifndef ULKGREP_MESSAGES_H
#define ULKGREP_MESSAGES_H

#include <ulkch.h>

// The name of a status of the library, and its meaning.
const char* describe(ulkStatus status);

// One line, as printf.
void complain(const char* format, ...);

// The pattern, and a caret under the offset.
void showCaret(const char* pattern, int32_t offset);

#endif
