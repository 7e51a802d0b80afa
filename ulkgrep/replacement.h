// A line with its matches replaced by a template, however long it becomes.
#ifndef ULKGREP_REPLACEMENT_H
#define ULKGREP_REPLACEMENT_H

#include <stdint.h>
#include <ulkch.h>

typedef enum ReplaceMode { REPLACE_FIRST, REPLACE_EVERY } ReplaceMode;

typedef struct Replacement {
  const char* template;
  ulkRegExpReplaceState* state;

  uint8_t* text;  // the new line
  int32_t length;
  int32_t capacity;

  ulkRegExpFind* records;  // for each match the match itself, then its groups
  int32_t numRecords;
  int32_t maxRecords;
} Replacement;

// The template must outlive the replacement.
ulkStatus prepareReplacement(Replacement* replacement, const char* template);
void freeReplacement(Replacement* replacement);

// Sets `text` and `records` from a line that is not empty and has a match. The mode must be REPLACE_EVERY for
// an expression that was compiled with g, else REPLACE_FIRST; a match has recordsPerMatch records, one more
// than the expression has groups. Returns
//   ulkErrMatchLimit     when the match limit ran out, if the library tells; see expression.c
//   ulkErrRegExpBackRef  when the template names a group that took no part in one of the matches
//   ulkErrLength         when the new line might not have a 32-bit length
ulkStatus replaceMatches(Replacement* replacement, ulkRegExpState* expression, ReplaceMode mode,
                         int32_t recordsPerMatch, const uint8_t* line, int32_t length);

#endif
