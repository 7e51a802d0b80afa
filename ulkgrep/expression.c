// How to find every match in a text, and know that it was every one.
//
// A search without the option g finds the first match only. It always begins at the start of the text it is
// given, and handing it the rest of the line after each match would be wrong: ^, \A, \b and lookbehind would
// see the start of a text where there is none. A search with g goes on by itself and knows what stands
// before, but has two traps.
//
// Of an expression with groups it reports the groups only. A replacement with g has the whole matches in its
// records as well, so it is what searches here, also when nothing is to be replaced.
//
// When its match limit runs out after the last match that it found, it says nothing. So a pattern P is first
// searched for in the frame (?:P|\z), within the same limit. \z matches at the end of the line whatever P
// does: when no match begins there, the limit ran out on the way.
//
// Of a pattern that ends in a literal, the library takes the last place of that literal for the end of the
// line, which lookahead sees, and of several alternatives may take it for all. An empty group behind the
// pattern keeps it from that. A group around it would do so too, but cost a pattern that begins with ".*" its
// speed.
#include "expression.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "memory.h"

// A generous bound of how many steps the frame takes for one step of the pattern.
enum { kFrameSteps = 8 };

static char* enclose(const char* before, const char* pattern, const char* closer, const char* after) {
  const size_t size = strlen(before) + strlen(pattern) + strlen(closer) + strlen(after) + 1;
  char* const enclosed = reallocate(NULL, size, 1);
  snprintf(enclosed, size, "%s%s%s%s", before, pattern, closer, after);
  return enclosed;
}

// A pattern may end inside \Q or, under x, inside a comment: either would swallow what comes behind it, also
// a parenthesis that closes nothing. Returns what ends them.
static const char* closerOf(const char* pattern, const char* options) {
  static const char* const kClosers[] = {"", "\\E"};
  for (size_t i = 0; i < sizeof kClosers / sizeof *kClosers; ++i) {
    char* const closed = enclose("", pattern, kClosers[i], ")");
    ulkRegExpState* state;
    int32_t errorOffset;
    const ulkStatus status = ulksRegExpInitAlloc(closed, options, &state, &errorOffset);
    ulksRegExpFree(state);
    free(closed);
    if (status != ulkOk) return kClosers[i];
  }
  return "\n";
}

// Whether a last literal may end the text for anything but itself: for another alternative or a lookahead.
static int seesLastLiteral(const char* pattern) {
  for (const char* at = pattern; (at = strpbrk(at, "|(")) != NULL; ++at)
    if (*at == '|' || (at[1] == '?' && (at[2] == '=' || at[2] == '!'))) return 1;
  return 0;
}

// Whether options change on the way. The library leaves them changed for its next attempt; but not in a
// group.
static int changesOptions(const char* pattern) {
  for (const char* at = pattern; (at = strstr(at, "(?")) != NULL; at += 2)
    if (at > pattern && at[2] && strchr("imsx-", at[2])) return 1;
  return 0;
}

// Whether every match begins at the start of a line.
static int isAtStart(const char* pattern, Extent extent) {
  if (extent == EXTENT_LINE) return 1;
  return pattern[0] == '^' && !strchr(pattern, '|') && (pattern[1] == '\0' || !strchr("*+?{", pattern[1]));
}

ulkStatus compileExpression(Expression* expression, const char* pattern, Extent extent, const char* options,
                            int32_t limit, int32_t* errorOffset) {
  static const char* const kBefore[] = {"(?:", "(?<!\\w)(?:", "^(?:"};
  static const char* const kAfter[] = {")", ")(?!\\w)", ")$"};
  *expression = (Expression){.options = options, .limit = limit, .isAtStart = isAtStart(pattern, extent)};
  // By itself first: errors are those of the pattern that was given.
  ulkStatus status = ulksRegExpInitAlloc(pattern, options, &expression->first, errorOffset);
  if (status != ulkOk) return status;
  ulksRegExpFree(expression->first);
  expression->first = NULL;
  const char* const closer = closerOf(pattern, options);
  if (extent == EXTENT_ANY && !changesOptions(pattern)) {
    expression->pattern = enclose("", pattern, closer, seesLastLiteral(pattern) ? "(?:)" : "");
  } else {
    expression->pattern = enclose(kBefore[extent], pattern, closer, kAfter[extent]);
  }
  int32_t offset;
  status = ulksRegExpInitAlloc(expression->pattern, options, &expression->first, &offset);
  if (status == ulkOk) status = ulksRegExpSetMatchLimit(limit, expression->first);
  return status == ulkOk ? prepareReplacement(&expression->found, "") : status;
}

void freeExpression(Expression* expression) {
  free(expression->pattern);
  ulksRegExpFree(expression->first);
  ulksRegExpFree(expression->every);
  ulksRegExpFree(expression->framed);
  freeReplacement(&expression->found);
}

static ulkStatus compileGlobal(const Expression* expression, const char* before, const char* after,
                               ulkRegExpState** state) {
  char options[16];
  snprintf(options, sizeof options, "%sg", expression->options);
  char* const pattern = enclose(before, expression->pattern, "", after);
  int32_t errorOffset;
  const ulkStatus status = ulksRegExpInitAlloc(pattern, options, state, &errorOffset);
  free(pattern);
  if (status != ulkOk) return status;
  const int32_t limit = expression->limit;
  return ulksRegExpSetMatchLimit(limit > INT32_MAX / kFrameSteps ? INT32_MAX : limit * kFrameSteps, *state);
}

ulkStatus findEvery(Expression* expression, int32_t recordsPerMatch, const uint8_t* line, int32_t length) {
  Replacement* found = &expression->found;
  ulkStatus status =
      expression->framed ? ulkOk : compileGlobal(expression, "(?:", "|\\z)", &expression->framed);
  if (status != ulkOk) return status;
  status = replaceMatches(found, expression->framed, REPLACE_EVERY, recordsPerMatch, line, length);
  if (status != ulkOk) return status;
  if (found->numRecords == 0) return ulkErrMatchLimit;
  const uint8_t* end = line + length;
  const ulkRegExpFind* last = &found->records[found->numRecords - recordsPerMatch];
  // Behind a match that is reported to end past the line, nothing is looked for.
  return last->pFound == end || last->pFound + last->lenFound > end ? ulkOk : ulkErrMatchLimit;
}

ulkStatus replaceEvery(Expression* expression, Replacement* replacement, int32_t recordsPerMatch,
                       const uint8_t* line, int32_t length) {
  ulkStatus status = findEvery(expression, recordsPerMatch, line, length);
  if (status == ulkOk && !expression->every) status = compileGlobal(expression, "", "", &expression->every);
  if (status != ulkOk) return status;
  return replaceMatches(replacement, expression->every, REPLACE_EVERY, recordsPerMatch, line, length);
}
