// A pattern that is searched for over several lines must find something in every line in which it matches
// when it is searched for in this line alone. What it finds beyond that is no harm, as each line found is
// searched again by itself.
//
// Where every match must contain some string, the string is what is searched for. Else the pattern is
// rewritten: with the option m, "^" and "$" know lines, and what could run on over a newline no longer takes
// one. Patterns with anything else that can tell a line from a text, or that remembers or forbids something,
// are not searched for in this way.
//
// Where lines that match are dense, one search with g finds many of them: ".*" behind the pattern goes to the
// end of each line. It may end at its limit without a word, so behind the last that it found there is always
// a search without g.
#include "line_filter.h"

#include <stdlib.h>
#include <string.h>

#include "memory.h"
#include "required.h"

enum { kNear = 512, kDense = 8, kManyLines = 1024 };

typedef struct Rewriter {
  const char* start;
  const char* from;
  char* to;
  int crlf;
  int isOneOfMany;      // patterns
  int depth;            // of groups
  int hasAlternatives;  // outside of groups
  int hasCaptures;
  int mayCross;  // something may still take a newline
} Rewriter;

static void put(Rewriter* rewriter, const char* text) {
  const size_t length = strlen(text);
  memcpy(rewriter->to, text, length);
  rewriter->to += length;
}

static void copy(Rewriter* rewriter, size_t count) {
  memcpy(rewriter->to, rewriter->from, count);
  rewriter->from += count;
  rewriter->to += count;
}

static int isAlphanumeric(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

static int rewriteEscape(Rewriter* rewriter) {
  const char letter = rewriter->from[1];
  const char* replacement = letter == 's'   ? "[\\t\\f\\r ]"
                            : letter == 'W' ? "[^\\w\\n]"
                            : letter == 'D' ? "[^\\d\\n]"
                                            : NULL;
  if (replacement) {
    put(rewriter, replacement);
    rewriter->from += 2;
    return 1;
  }
  if (letter == '\0') return 0;
  if (isAlphanumeric(letter) && !strchr("wdbBSfrtvae", letter)) return 0;
  copy(rewriter, 2);
  return 1;
}

// A negated class gets the newline as one more member. Of another one that has more than letters, digits and
// punctuation nobody looks whether it has a newline.
static int rewriteClass(Rewriter* rewriter) {
  const char* const end = skipClass(rewriter->from);
  if (!end) return 0;
  copy(rewriter, 1);
  const int isNegated = *rewriter->from == '^';
  if (isNegated) {
    copy(rewriter, 1);
    if (*rewriter->from == '-') return 0;
    put(rewriter, "\\n");
  }
  if (*rewriter->from == ']') {
    put(rewriter, "\\]");
    ++rewriter->from;
  }
  for (const char* at = rewriter->from; !isNegated && at < end; ++at) {
    const int isEscape = *at == '\\' && isAlphanumeric(at[1]) && !strchr("wd", at[1]);
    if (isEscape || (*at == '[' && at[1] == ':') || (unsigned char)*at < ' ') rewriter->mayCross = 1;
  }
  copy(rewriter, (size_t)(end - rewriter->from));
  return 1;
}

static int rewrite(Rewriter* rewriter) {
  while (*rewriter->from) {
    switch (*rewriter->from) {
      case '\\':
        if (!rewriteEscape(rewriter)) return 0;
        break;
      case '[':
        if (!rewriteClass(rewriter)) return 0;
        break;
      case '(':
        if (rewriter->from == rewriter->start && !rewriter->isOneOfMany &&
            strncmp(rewriter->from, "(?i)", 4) == 0) {
          copy(rewriter, 4);
          break;
        }
        if (rewriter->from[1] == '?' && rewriter->from[2] != ':') return 0;
        if (rewriter->from[1] != '?') rewriter->hasCaptures = 1;
        copy(rewriter, rewriter->from[1] == '?' ? 3 : 1);
        ++rewriter->depth;
        break;
      case ')':
        copy(rewriter, 1);
        --rewriter->depth;
        break;
      case '|':
        copy(rewriter, 1);
        if (rewriter->depth == 0) rewriter->hasAlternatives = 1;
        break;
      case '$':
        put(rewriter, rewriter->crlf ? "(?=\\r?$)" : "$");
        ++rewriter->from;
        break;
      case '^':
        // With m a search begins at the start of a line only, also where the "^" need not be.
        copy(rewriter, 1);
        if (*rewriter->from && strchr("*+?{", *rewriter->from)) return 0;
        break;
      case '*':
      case '+':
      case '?':
      case '{': {
        const char* const end = skipQuantifier(rewriter->from, rewriter->start);
        if (!end) return 0;
        copy(rewriter, (size_t)(end - rewriter->from));
        break;
      }
      default:
        copy(rewriter, 1);
    }
  }
  return 1;
}

// The patterns as one for many lines, in memory with room for a frame; null when they allow none.
static char* makePattern(const Options* options, Rewriter* rewriter) {
  size_t size = sizeof "(?:(?:)).*";
  // No byte becomes more than the eight of "(?=\r?$)".
  for (size_t i = 0; i < options->patterns.count; ++i) size += 8 * strlen(options->patterns.items[i]) + 1;
  char* const pattern = reallocate(NULL, size, 1);
  *rewriter = (Rewriter){.to = pattern, .crlf = options->crlf, .isOneOfMany = options->patterns.count > 1};
  rewriter->hasAlternatives = rewriter->isOneOfMany;
  for (size_t i = 0; i < options->patterns.count; ++i) {
    if (i > 0) put(rewriter, "|");
    rewriter->from = options->patterns.items[i];
    rewriter->start = rewriter->from;
    if (!rewrite(rewriter)) {
      free(pattern);
      return NULL;
    }
  }
  // Else the last literal of one alternative may end the text for the others; expression.c tells more.
  if (rewriter->hasAlternatives) put(rewriter, "(?:)");
  *rewriter->to = '\0';
  return pattern;
}

static void compileExpressions(LineFilter* filter, const Options* options) {
  Rewriter rewriter;
  char* const pattern = makePattern(options, &rewriter);
  if (!pattern) return;
  int32_t offset;
  ulksRegExpInitAlloc(pattern, options->ignoreCase ? "im" : "m", &filter->expression, &offset);
  filter->isExact = !rewriter.mayCross && !options->crlf && options->extent == EXTENT_ANY;
  // With groups that capture, g reports nothing but these.
  if (filter->isExact && !rewriter.hasCaptures) {
    if (rewriter.hasAlternatives) {
      memmove(pattern + 3, pattern, strlen(pattern) + 1);
      for (int i = 0; i < 3; ++i) pattern[i] = "(?:"[i];
      strcat(pattern, ")");
    }
    strcat(pattern, ".*");
    ulksRegExpInitAlloc(pattern, options->ignoreCase ? "img" : "mg", &filter->every, &offset);
    filter->found = reallocate(NULL, kManyLines, sizeof *filter->found);
  }
  free(pattern);
}

// A single letter is in most lines.
static int isWorthwhile(const uint8_t* string, int32_t length) {
  return length > 1 || (length == 1 && !strchr("etaoinshrdlucm ", string[0]));
}

void compileFilter(LineFilter* filter, const Options* options) {
  *filter = (LineFilter){.expression = NULL};
  if (options->patterns.count == 0) return;
  if (options->patterns.count == 1 && !options->ignoreCase) {
    const char* const pattern = options->patterns.items[0];
    filter->string = reallocate(NULL, strlen(pattern) + 1, 1);
    int isWhole = 0;
    filter->stringLength = (int32_t)findRequired(pattern, (char*)filter->string, &isWhole);
    if (isWorthwhile(filter->string, filter->stringLength)) {
      filter->isExact = isWhole && options->extent == EXTENT_ANY;
      return;
    }
    free(filter->string);
    filter->string = NULL;
  }
  compileExpressions(filter, options);
}

void freeFilter(LineFilter* filter) {
  free(filter->string);
  free(filter->found);
  ulksRegExpFree(filter->expression);
  ulksRegExpFree(filter->every);
}

void forgetFound(LineFilter* filter) {
  filter->nextFound = filter->numFound = 0;
  filter->last = NULL;
}

static ulkStatus search(ulkRegExpState* expression, const uint8_t* text, int32_t length, ulkRegExpFind* found,
                        int32_t* count) {
  ulksRegExpSetMatchLimit(length < INT32_MAX / 500 ? 10000 + 400 * length : INT32_MAX, expression);
  return ulksRegExpFind_8u(text, length, expression, found, count);
}

// The next of many, null when there are no more of them.
static const uint8_t* nextOfMany(LineFilter* filter, const uint8_t* text) {
  while (filter->nextFound < filter->numFound) {
    const uint8_t* found = filter->found[filter->nextFound++].pFound;
    if (found >= text) return found;
  }
  return NULL;
}

static const uint8_t* findMany(LineFilter* filter, const uint8_t* text, int32_t length) {
  filter->density = 0;
  filter->nextFound = 0;
  filter->numFound = kManyLines;
  if (search(filter->every, text, length, filter->found, &filter->numFound) != ulkOk) filter->numFound = 0;
  return nextOfMany(filter, text);
}

int32_t findPossibleLine(LineFilter* filter, const uint8_t* text, int32_t length) {
  if (filter->string) {
    int32_t at;
    ulksFind_8u(text, length, filter->string, filter->stringLength, &at);
    return at < 0 ? length + 1 : at;
  }
  if (!filter->expression) return 0;
  const uint8_t* at = nextOfMany(filter, text);
  if (!at && filter->every && filter->density >= kDense) at = findMany(filter, text, length);
  if (at) return (int32_t)(at - text);

  ulkRegExpFind found;
  int32_t count = 1;
  if (search(filter->expression, text, length, &found, &count) != ulkOk) return -1;
  if (count == 0) return length + 1;
  const int isNear = filter->last && found.pFound - filter->last < kNear;
  filter->density = isNear ? filter->density + 1 : 0;
  filter->last = found.pFound;
  return (int32_t)(found.pFound - text);
}
