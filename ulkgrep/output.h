// What ulkgrep prints on standard output.
#ifndef ULKGREP_OUTPUT_H
#define ULKGREP_OUTPUT_H

#include <stdint.h>
#include <ulkch.h>

#include "options.h"

typedef struct Line {
  const char* file;
  uint64_t number;
  const uint8_t* bytes;
  int32_t length;
} Line;

void printCount(const Options* options, const char* file, uint64_t count);

// The line, with matches in colour. All functions name the pattern when there are several.
void printLine(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
               int32_t numMatches);

// Each match on a line of its own.
void printMatches(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
                  int32_t numMatches);

#endif
