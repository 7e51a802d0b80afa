// What ulkgrep says on standard error.
#ifndef ULKGREP_MESSAGES_H
#define ULKGREP_MESSAGES_H

#include <ulkch.h>

// Name and meaning of a status of the library.
const char* statusName(ulkStatus status);
const char* statusMeaning(ulkStatus status);

// One line, as printf.
void complain(const char* format, ...);

// The line of the pattern that holds the offset, and a caret under it.
void showCaret(const char* pattern, int32_t offset);

#endif
