#include "messages.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

const char* describe(ulkStatus status) {
  switch (status) {
#define STATUS_CASE(name, value, meaning) \
  case name:                              \
    return #name " (" meaning ")";
    ULK_STATUS_LIST(STATUS_CASE)
#undef STATUS_CASE
    default:
      return "unknown status";
  }
}

void complain(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  fflush(stdout);
  fputs("ulkgrep: ", stderr);
  vfprintf(stderr, format, arguments);
  fputc('\n', stderr);
  va_end(arguments);
}

static int isContinuation(char byte) { return ((unsigned char)byte & 0xC0) == 0x80; }

// One column for each character, tabs as they are.
void showCaret(const char* pattern, int32_t offset) {
  const char* at = pattern + offset;
  while (at > pattern && isContinuation(*at)) --at;
  fprintf(stderr, "  %s\n  ", pattern);
  for (const char* p = pattern; p < at; ++p)
    if (!isContinuation(*p)) fputc(*p == '\t' ? '\t' : ' ', stderr);
  fputs("^\n", stderr);
}
