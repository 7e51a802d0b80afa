// A compiled pattern, and all its matches in a line.
#ifndef ULKGREP_EXPRESSION_H
#define ULKGREP_EXPRESSION_H

#include <stdint.h>
#include <ulkch.h>

#include "options.h"
#include "replacement.h"

typedef struct Expression {
  char* pattern;  // as it is searched for
  const char* options;
  int32_t limit;
  int isAtStart;           // every match: so a line has one at the most
  ulkRegExpState* first;   // without g
  ulkRegExpState* every;   // with the option g; this and
  ulkRegExpState* framed;  // in a frame, see expression.c, are made when first needed
  Replacement found;       // by `framed`
} Expression;

// Compiles the pattern, to match what the extent says, with the option letters, which must outlive the
// expression. On failure *errorOffset is the byte of the pattern at fault.
ulkStatus compileExpression(Expression* expression, const char* pattern, Extent extent, const char* options,
                            int32_t limit, int32_t* errorOffset);
void freeExpression(Expression* expression);

// Finds every match in a line in which `first` has just found one with so many records. Sets the records of
// `found`; an empty match at the end of the line may be none. Returns ulkErrMatchLimit also when the library
// would not tell that not every match was found.
ulkStatus findEvery(Expression* expression, int32_t recordsPerMatch, const uint8_t* line, int32_t length);

// As replaceMatches for all these matches.
ulkStatus replaceEvery(Expression* expression, Replacement* replacement, int32_t recordsPerMatch,
                       const uint8_t* line, int32_t length);

#endif
