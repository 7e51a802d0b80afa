// How to search for several expressions at once. The library may spread them over threads, so each has its
// own state, result and records.
#include "pattern_set.h"

#include <stdlib.h>
#include <string.h>

#include "memory.h"
#include "messages.h"

enum { kRecordsPerPattern = 1000 };  // the match and 999 groups

// The library takes the zero behind a backslash, or behind "\c", for the byte that is meant; here it is a
// slip of the keyboard. Returns the place of that backslash, or null.
static const char* loneBackslash(const char* pattern) {
  const char* end = pattern + strlen(pattern);
  if (end > pattern && end[-1] == 'c') --end;
  size_t backslashes = 0;
  for (const char* at = end; at > pattern && at[-1] == '\\'; --at) ++backslashes;
  return backslashes % 2 == 1 ? end - 1 : NULL;
}

// Behind a backslash, a byte that is no letter or digit stands for itself.
static char* escape(const char* string) {
  char* const escaped = reallocate(NULL, 2 * strlen(string) + 1, 1);
  char* to = escaped;
  for (; *string; ++string) {
    const unsigned char byte = (unsigned char)*string;
    const int isPlain = byte >= 0x80 || byte == '_' || (byte >= '0' && byte <= '9') ||
                        ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z');
    if (!isPlain) *to++ = '\\';
    *to++ = (char)byte;
  }
  *to = '\0';
  return escaped;
}

static void escapePatterns(PatternList* list) {
  for (size_t i = 0; i < list->count; ++i) {
    char* const escaped = escape(list->items[i]);
    free(list->items[i]);
    list->items[i] = escaped;
  }
}

static int compilePattern(Expression* expression, const char* pattern, const Options* options) {
  *expression = (Expression){.pattern = NULL};
  const char* const backslash = loneBackslash(pattern);
  if (backslash) {
    complain("the pattern ends within an escape");
    showCaret(pattern, (int32_t)(backslash - pattern));
    return 0;
  }
  int32_t offset = -1;
  const ulkStatus status = compileExpression(expression, pattern, options->extent,
                                             options->ignoreCase ? "i" : "", options->limit, &offset);
  if (status == ulkOk) return 1;
  if (offset < 0) {
    complain("the pattern: %s", describe(status));
    return 0;
  }
  complain("byte %d of the pattern: %s", (int)offset, describe(status));
  showCaret(pattern, offset);
  return 0;
}

int compilePatterns(PatternSet* set, Options* options) {
  const size_t count = options->patterns.count;
  if (options->fixedStrings) escapePatterns(&options->patterns);
  if (count == 0) return 1;
  set->expressions = reallocate(NULL, count, sizeof *set->expressions);
  set->results = reallocate(NULL, count, sizeof *set->results);
  set->records = reallocate(NULL, count * kRecordsPerPattern, sizeof *set->records);
  ulkStatus status = ulksRegExpMultiInitAlloc(&set->state, (uint32_t)count);
  for (size_t i = 0; i < count; ++i) {
    Expression* const expression = &set->expressions[set->count++];
    if (!compilePattern(expression, options->patterns.items[i], options)) return 0;
    if (status == ulkOk) status = ulksRegExpMultiAdd(expression->first, (uint32_t)i + 1, set->state);
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
