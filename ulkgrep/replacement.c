// How to replace without knowing beforehand how many matches there are and how long the result becomes.
//
// The library stops at the first piece that does not fit, and it is not always to be seen from the lengths
// whether it did. The records tell it: they hold every match and group, from which follows how long the
// result is at most. If the destination was longer than that, everything fitted. If not, the line is replaced
// again in one that is. Going on where the library stopped would be no shorter, and wrong for ^, \b and
// lookbehind, which would see the start of a line there.
//
// Two things make even a first call with a destination too small safe. With g nothing is written beyond the
// capacity. Without g the library holds the template against the whole capacity, wherever the match stands,
// and copies the line's tail unasked when the template is empty: so the destination always has the length of
// the line more than the capacity that the library is told.
#include "replacement.h"

#include <stdlib.h>
#include <string.h>

#include "memory.h"

ulkStatus prepareReplacement(Replacement* replacement, const char* template) {
  int32_t size;
  ulkStatus status = ulksRegExpReplaceGetSize(template, &size);
  if (status != ulkOk) return status;
  *replacement = (Replacement){.template = template, .state = reallocate(NULL, (size_t)size, 1)};
  return ulksRegExpReplaceInit(template, replacement->state);
}

void freeReplacement(Replacement* replacement) {
  free(replacement->state);
  free(replacement->text);
  free(replacement->records);
}

// --- records

// Replaces until there was room for the records of every match.
static ulkStatus replaceWithAllRecords(Replacement* replacement, ulkRegExpState* expression, ReplaceMode mode,
                                       int32_t recordsPerMatch, const uint8_t* line, int32_t length) {
  for (;;) {
    const int32_t room = replacement->maxRecords - replacement->maxRecords % recordsPerMatch;
    if (room > 0) {
      ulkRegExpFind* last = &replacement->records[room - recordsPerMatch];
      last->pFound = NULL;
      int32_t used = length;
      replacement->numRecords = room;
      replacement->length = replacement->capacity;
      const ulkStatus status =
          ulksRegExpReplace_8u(line, &used, replacement->text, &replacement->length, replacement->records,
                               &replacement->numRecords, expression, replacement->state);
      // With room for only one more match, what g looks for behind an empty one is left out.
      if (status != ulkOk || mode == REPLACE_FIRST || replacement->numRecords <= room - 2 * recordsPerMatch)
        return status;
      // All are said to be filled, and are not: the limit ran out, which leaves the number as it was.
      if (replacement->numRecords == room && !last->pFound) return ulkErrMatchLimit;
    }
    if (replacement->maxRecords > INT32_MAX / 2) return ulkErrLength;
    replacement->maxRecords = room > 0 ? replacement->maxRecords * 2 : 64 * recordsPerMatch;
    replacement->records =
        reallocate(replacement->records, (size_t)replacement->maxRecords, sizeof *replacement->records);
  }
}

// --- room

// How long the template can become in a match; -1 when it names a group that took no part in it. The library
// would let such a group take back a byte of what is written already, and stop if there is none to take.
static int64_t longestExpansion(const char* template, const ulkRegExpFind* match, int32_t recordsPerMatch) {
  int64_t longest = (int64_t)strlen(template);
  for (const char* at = strchr(template, '$'); at; at = strchr(at, '$')) {
    uint32_t group = 0;
    for (++at; *at >= '0' && *at <= '9'; ++at) group = 11 * group + (uint32_t)(*at - '0');
    if (group >= (uint32_t)recordsPerMatch) continue;
    if (match[group].lenFound < 0) return -1;
    longest += match[group].lenFound;
  }
  return longest;
}

static ulkStatus longestResult(const Replacement* replacement, int32_t recordsPerMatch, int32_t length,
                               int32_t* result) {
  int64_t longest = length;
  for (int32_t match = 0; match < replacement->numRecords; match += recordsPerMatch) {
    const int64_t expansion =
        longestExpansion(replacement->template, &replacement->records[match], recordsPerMatch);
    if (expansion < 0) return ulkErrRegExpBackRef;
    longest += expansion;
    if (longest >= INT32_MAX) return ulkErrLength;
  }
  *result = (int32_t)longest;
  return ulkOk;
}

// The library needs one byte more than the result has.
static void makeRoom(Replacement* replacement, int32_t capacity, int32_t length) {
  replacement->capacity = capacity;
  replacement->text = reallocate(replacement->text, (size_t)capacity + (size_t)length, 1);
}

// Adds what the library does not count: behind the first match, the tail after an empty template; and a match
// that is reported beyond the end of the line has made the tail's length negative.
static void correctLength(Replacement* replacement, ReplaceMode mode, int32_t recordsPerMatch,
                          const uint8_t* line, int32_t length) {
  const ulkRegExpFind* last = &replacement->records[replacement->numRecords - recordsPerMatch];
  const int32_t reported = (int32_t)(line + length - last->pFound) - last->lenFound;
  const int isEmpty = replacement->template[strspn(replacement->template, "\\")] == '\0';
  const int32_t counted = mode == REPLACE_FIRST && isEmpty ? 0 : reported;
  replacement->length += (reported > 0 ? reported : 0) - counted;
}

ulkStatus replaceMatches(Replacement* replacement, ulkRegExpState* expression, ReplaceMode mode,
                         int32_t recordsPerMatch, const uint8_t* line, int32_t length) {
  if (length == INT32_MAX) return ulkErrLength;
  // Also when there is room already: the room behind it depends on the line.
  makeRoom(replacement, replacement->capacity > length ? replacement->capacity : length + 1, length);
  ulkStatus status = replaceWithAllRecords(replacement, expression, mode, recordsPerMatch, line, length);
  if (status != ulkOk || replacement->numRecords == 0) return status;

  int32_t longest;
  status = longestResult(replacement, recordsPerMatch, length, &longest);
  if (status != ulkOk) return status;
  if (longest >= replacement->capacity) {
    makeRoom(replacement, longest + 1, length);
    status = replaceWithAllRecords(replacement, expression, mode, recordsPerMatch, line, length);
    if (status != ulkOk) return status;
  }
  correctLength(replacement, mode, recordsPerMatch, line, length);
  return ulkOk;
}
