// What ulkgrep prints on standard output.
#ifndef ULKGREP_OUTPUT_H
#define ULKGREP_OUTPUT_H

#include <stdint.h>
#include <ulkch.h>

#include "options.h"

typedef struct Line {
  const char* file;
  uint64_t number;  // where it is to be printed
  const uint8_t* bytes;
  int32_t length;
  int hasReturn;   // a carriage return behind it belongs to its end
  int hasNewline;  // behind that
} Line;

void printName(const Options* options, const char* file);
void printCount(const Options* options, const char* file, uint64_t count);
void printSeparator(void);

// To be called before anything is printed.
void prepareOutput(const Options* options);

// A line around the chosen ones.
void printContext(const Options* options, const Line* line);

// The line, with matches in colour. `pattern` is shown where patterns are to be named, if it is not null.
void printLine(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
               int32_t numMatches);

// Each match on a line of its own.
void printMatches(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
                  int32_t numMatches);

#endif
