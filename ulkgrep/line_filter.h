// Finds the next line that may match, by a search over many lines at once.
#ifndef ULKGREP_LINE_FILTER_H
#define ULKGREP_LINE_FILTER_H

#include <stdint.h>
#include <ulkch.h>

#include "options.h"

typedef struct LineFilter {
  uint8_t* string;  // that every match contains; null when there is none, or none worth looking for
  int32_t stringLength;
  ulkRegExpState* expression;  // for the first match; null when the patterns allow no such search
  ulkRegExpState* every;       // for one match in each of many lines, where they are dense; may be null
  int isExact;                 // the line in which something is found does match

  ulkRegExpFind* found;  // what `every` has found, between two of these
  int32_t nextFound;
  int32_t numFound;
  const uint8_t* last;  // where something was found last
  int density;          // how many times in a row that was near
} LineFilter;

// The patterns have compiled.
void compileFilter(LineFilter* filter, const Options* options);
void freeFilter(LineFilter* filter);

// Finds, in a text of whole lines, the first place at or behind which a line may match: no line that ends
// before it does. A number above `length` when none may; -1 when the search took too long to tell. Where the
// filter looks for nothing, every line may match. A search for several lines goes through one text from front
// to end; the text stays as it is until forgetFound.
int32_t findPossibleLine(LineFilter* filter, const uint8_t* text, int32_t length);
void forgetFound(LineFilter* filter);

#endif
