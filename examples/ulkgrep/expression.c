// How to find every match in a text.
//
// A search without the option g reports the first match with its groups. It always begins at the start of the
// text it is given, and handing it the rest of the line after each match would be wrong: ^, \A, \b and
// lookbehind would see the start of a text where there is none. A search with g goes on by itself and knows
// what stands before, but has two traps: of an expression with groups it reports the groups only, and when
// its match limit runs out after the last match that it found, it says nothing. So a pattern P is compiled a
// second time, with g, in a frame:
//
//     (?:P|\z)                  when P has no groups
//     (?:(?=(?:P)())()|\z)      when it has
//
// \z matches at the end of the line whatever P does: when no record stands there, the limit ran out on the
// way. The two empty groups of the second frame mark the end and the start of what P matches; they are
// numbered after the groups of P, so back references keep their meaning. As a lookahead consumes nothing,
// this frame finds a match at every position where there is one, also inside the match before; those are
// passed over later. The price is time: on one very long line that (.*) matches, it grows with the square of
// the length.
#include "expression.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

enum {
  kMaxRecords = 1000,  // the match and 999 groups
  kMarkGroups = 2,     // behind P's own groups: first the end mark, then the start mark
  kFrameSteps = 8      // a generous bound of what a frame adds to the steps of one attempt
};

ulkStatus compileExpression(Expression* expression, const char* pattern, const char* options, int32_t limit,
                            int32_t* errorOffset) {
  *expression = (Expression){.pattern = pattern, .options = options, .limit = limit};
  ulkStatus status = ulksRegExpInitAlloc(pattern, options, &expression->first, errorOffset);
  return status == ulkOk ? ulksRegExpSetMatchLimit(limit, expression->first) : status;
}

void freeExpression(Expression* expression) {
  ulksRegExpFree(expression->first);
  ulksRegExpFree(expression->every);
  free(expression->records);
}

static ulkStatus compileFrame(Expression* expression, const char* closer) {
  const char* frame = expression->groups > 0 ? "(?:(?=(?:%s%s)())()|\\z)" : "(?:%s%s|\\z)";
  const size_t size = strlen(frame) + strlen(expression->pattern) + strlen(closer);
  char* framed = malloc(size);
  if (!framed) return ulkErrNullPtr;
  snprintf(framed, size, frame, expression->pattern, closer);

  char options[16];
  snprintf(options, sizeof options, "%sg", expression->options);
  int32_t errorOffset;
  ulkStatus status = ulksRegExpInitAlloc(framed, options, &expression->every, &errorOffset);
  free(framed);
  return status;
}

// Fails for a pattern whose groups and levels leave no room for the frame's.
static ulkStatus compileEvery(Expression* expression) {
  // A pattern may end inside \Q or, under x, inside a comment: either would swallow the rest of the frame.
  static const char* const kClosers[] = {"", "\\E", "\n"};
  ulkStatus status = ulkOk;
  for (size_t i = 0; i < sizeof kClosers / sizeof *kClosers; ++i) {
    status = compileFrame(expression, kClosers[i]);
    if (status != ulkOk) continue;
    const int32_t limit = expression->limit;
    return ulksRegExpSetMatchLimit(limit > INT32_MAX / kFrameSteps ? INT32_MAX : limit * kFrameSteps,
                                   expression->every);
  }
  return status;
}

// A match may be reported to end past the end of the line.
static int32_t offsetIn(const uint8_t* line, int32_t length, const uint8_t* at) {
  return at - line < length ? (int32_t)(at - line) : length;
}

ulkStatus findFirst(Expression* expression, const uint8_t* line, int32_t length, Span* match, int* found) {
  ulkRegExpFind records[kMaxRecords];
  int32_t count = kMaxRecords;
  ulkStatus status = ulksRegExpFind_8u(line, length, expression->first, records, &count);
  *found = status == ulkOk && count > 0;
  if (*found) {
    expression->groups = count - 1;
    match->start = offsetIn(line, length, records[0].pFound);
    match->end = offsetIn(line, length, records[0].pFound + records[0].lenFound);
  }
  return status;
}

static int growRecords(Expression* expression, int32_t perMatch) {
  if (expression->capacity > INT32_MAX / 2 / (int32_t)sizeof *expression->records) return 0;
  const int32_t capacity = expression->capacity ? expression->capacity * 2 : 64 * perMatch;
  ulkRegExpFind* records = realloc(expression->records, (size_t)capacity * sizeof *records);
  if (!records) return 0;
  expression->records = records;
  expression->capacity = capacity;
  return 1;
}

// Searches until the array has room for every record.
static ulkStatus findRecords(Expression* expression, const uint8_t* line, int32_t length, int32_t perMatch,
                             int32_t* count) {
  for (;;) {
    *count = expression->capacity;
    if (*count > 0) {
      ulkStatus status = ulksRegExpFind_8u(line, length, expression->every, expression->records, count);
      if (status != ulkOk || *count <= expression->capacity - perMatch) return status;
    }
    if (!growRecords(expression, perMatch)) return ulkErrNullPtr;
  }
}

// What the records of one match tell. Where \z matched and not P, the match is empty.
static Span spanOf(const Expression* expression, const ulkRegExpFind* records, const uint8_t* line,
                   int32_t length) {
  const ulkRegExpFind* endMark = records + expression->groups;
  const ulkRegExpFind* startMark = endMark + 1;
  if (expression->groups == 0)
    return (Span){offsetIn(line, length, records->pFound),
                  offsetIn(line, length, records->pFound + records->lenFound)};
  if (!startMark->pFound) return (Span){length, length};
  const int32_t start = offsetIn(line, length, startMark->pFound);
  // A lazy repeat of a character such as \x{e9} may end the expression early, before the end mark.
  return (Span){start, endMark->pFound ? offsetIn(line, length, endMark->pFound) : start};
}

ulkStatus findEvery(Expression* expression, const uint8_t* line, int32_t length, SpanList* matches) {
  ulkStatus status = expression->every ? ulkOk : compileEvery(expression);
  if (status != ulkOk) return status;
  const int32_t perMatch = expression->groups > 0 ? expression->groups + kMarkGroups : 1;
  int32_t count;
  status = findRecords(expression, line, length, perMatch, &count);
  if (status != ulkOk) return status;

  const size_t before = matches->count;
  Span span = {-1, -1};
  for (int32_t i = 0; i < count; i += perMatch) {
    const int32_t last = span.start;
    span = spanOf(expression, expression->records + i, line, length);
    // After an empty match g looks for a match of one byte there, as if the text ended behind that byte: not
    // ours.
    if (span.start != last) appendSpan(matches, span);
  }
  if ((expression->groups > 0 ? span.start : span.end) == length) return ulkOk;
  matches->count = before;
  return ulkErrMatchLimit;
}

void appendSpan(SpanList* list, Span span) {
  if (list->count == list->capacity) {
    list->capacity = list->capacity ? list->capacity * 2 : 64;
    list->spans = realloc(list->spans, list->capacity * sizeof *list->spans);
    if (!list->spans) {
      fputs("ulkgrep: out of memory\n", stderr);
      exit(2);
    }
  }
  list->spans[list->count++] = span;
}

static int compareSpans(const void* left, const void* right) {
  const Span* a = left;
  const Span* b = right;
  if (a->start != b->start) return a->start < b->start ? -1 : 1;
  return (a->end < b->end) - (a->end > b->end);
}

void keepLeftmost(SpanList* list) {
  if (list->count > 1) qsort(list->spans, list->count, sizeof *list->spans, compareSpans);
  size_t kept = 0;
  int32_t end = 0;
  for (size_t i = 0; i < list->count; ++i) {
    const Span span = list->spans[i];
    if (span.start < end || span.start == span.end) continue;
    list->spans[kept++] = span;
    end = span.end;
  }
  list->count = kept;
}
