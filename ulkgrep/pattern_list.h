// The patterns of the command line, as they were written.
#ifndef ULKGREP_PATTERN_LIST_H
#define ULKGREP_PATTERN_LIST_H

#include <stddef.h>

typedef struct PatternList {
  char** items;  // each allocated by itself
  size_t count;
} PatternList;

// Adds each line of a text. A newline at its end begins one more, empty pattern.
void addPatterns(PatternList* list, const char* text);

// Adds each line of a file; "-" is standard input. With `crlf` a carriage return before a newline belongs to
// the line's end. Returns 0, after a message, when that cannot be done.
int addPatternsOfFile(PatternList* list, const char* name, int crlf);

void freePatternList(PatternList* list);

#endif
