// A compiled expression that tells the first match in a line, and every match.
#ifndef ULKGREP_EXPRESSION_H
#define ULKGREP_EXPRESSION_H

#include <stddef.h>
#include <stdint.h>
#include <ulkch.h>

typedef struct Span {
  int32_t start;  // byte offsets in the line
  int32_t end;
} Span;

typedef struct SpanList {
  Span* spans;
  size_t count;
  size_t capacity;
} SpanList;

typedef struct Expression {
  const char* pattern;
  const char* options;
  int32_t limit;
  ulkRegExpState* first;   // the pattern as it is
  ulkRegExpState* every;   // the pattern in a frame, made when it is first needed; see expression.c
  int32_t groups;          // of the pattern, known after its first match
  ulkRegExpFind* records;  // room for what `every` finds
  int32_t capacity;
} Expression;

// Compiles the pattern with the option letters, both of which must outlive the expression. On failure
// *errorOffset is the byte of the pattern at fault.
ulkStatus compileExpression(Expression* expression, const char* pattern, const char* options, int32_t limit,
                            int32_t* errorOffset);
void freeExpression(Expression* expression);

// The searches need a NUL behind the line, because the library may look at the byte there.

// Finds the first match; *found tells whether there is one. After ulkErrMatchLimit nobody knows.
ulkStatus findFirst(Expression* expression, const uint8_t* line, int32_t length, Span* match, int* found);

// Adds all matches in a line in which findFirst has just found one. Adds nothing unless it returns ulkOk.
ulkStatus findEvery(Expression* expression, const uint8_t* line, int32_t length, SpanList* matches);

void appendSpan(SpanList* list, Span span);

// Leaves the matches to show, in order and apart from each other: the leftmost first, the longest of those
// that begin together, then the leftmost behind its end. Empty matches have nothing to show and are dropped.
void keepLeftmost(SpanList* list);

#endif
