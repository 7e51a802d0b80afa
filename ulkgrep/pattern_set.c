// How to search for several expressions at once. The library may spread them over threads, so each has its
// own state, result and records.
#include "pattern_set.h"

#include <stdlib.h>
#include <string.h>

#include "memory.h"
#include "messages.h"

enum { kRecordsPerPattern = 1000 };  // the match and 999 groups

// The library takes a backslash at the very end for a NUL byte; here it is a slip of the keyboard.
static int endsInLoneBackslash(const char* pattern) {
  size_t backslashes = 0;
  for (const char* at = pattern + strlen(pattern); at > pattern && at[-1] == '\\'; --at) ++backslashes;
  return backslashes % 2 == 1;
}

static int compilePattern(Expression* expression, const char* pattern, const Options* options) {
  if (endsInLoneBackslash(pattern)) {
    complain("the pattern ends in a lone backslash");
    showCaret(pattern, (int32_t)strlen(pattern) - 1);
    return 0;
  }
  int32_t offset = 0;
  const ulkStatus status = compileExpression(expression, pattern, options->letters, options->limit, &offset);
  if (status == ulkOk) return 1;
  complain("byte %d of the pattern: %s", (int)offset, describe(status));
  showCaret(pattern, offset);
  return 0;
}

int compilePatterns(PatternSet* set, const Options* options) {
  const size_t count = options->numPatterns;
  set->expressions = reallocate(NULL, count, sizeof *set->expressions);
  set->results = reallocate(NULL, count, sizeof *set->results);
  set->records = reallocate(NULL, count * kRecordsPerPattern, sizeof *set->records);
  ulkStatus status = ulksRegExpMultiInitAlloc(&set->state, (uint32_t)count);
  for (size_t i = 0; i < count; ++i, ++set->count) {
    if (!compilePattern(&set->expressions[i], options->patterns[i], options)) return 0;
    if (status == ulkOk) status = ulksRegExpMultiAdd(set->expressions[i].first, (uint32_t)i + 1, set->state);
    set->results[i].pFind = set->records + i * kRecordsPerPattern;
  }
  if (status != ulkOk) complain("%s", describe(status));
  return status == ulkOk;
}

void freePatterns(PatternSet* set) {
  ulksRegExpMultiFree(set->state);
  for (int32_t i = 0; i < set->count; ++i) freeExpression(&set->expressions[i]);
  free(set->expressions);
  free(set->results);
  free(set->records);
}

void searchPatterns(PatternSet* set, const uint8_t* line, int32_t length) {
  for (int32_t i = 0; i < set->count; ++i) set->results[i].numFind = kRecordsPerPattern;
  if (set->count > 1 && length > 0) {
    ulksRegExpMultiFind_8u(line, length, set->results, set->state);
  } else {
    // A set is not searched in an empty text.
    for (int32_t i = 0; i < set->count; ++i) {
      ulkRegExpMultiFind* result = &set->results[i];
      result->status =
          ulksRegExpFind_8u(line, length, set->expressions[i].first, result->pFind, &result->numFind);
    }
  }
  for (int32_t i = 0; i < set->count; ++i)
    if (set->results[i].status != ulkOk) set->results[i].numFind = 0;
}

int32_t leftmostPattern(const PatternSet* set) {
  int32_t leftmost = -1;
  for (int32_t i = 0; i < set->count; ++i) {
    if (set->results[i].numFind == 0) continue;
    if (leftmost < 0 || set->results[i].pFind->pFound < set->results[leftmost].pFind->pFound) leftmost = i;
  }
  return leftmost;
}
