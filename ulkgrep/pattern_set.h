// The patterns of the command line, searched together.
#ifndef ULKGREP_PATTERN_SET_H
#define ULKGREP_PATTERN_SET_H

#include <stddef.h>
#include <stdint.h>
#include <ulkch.h>

#include "expression.h"
#include "options.h"

typedef struct PatternSet {
  Expression* expressions;
  int32_t count;
  ulkRegExpMultiState* state;
  ulkRegExpMultiFind* results;  // of the last search, for each expression
  ulkRegExpFind* records;
} PatternSet;

// Returns 0, after a message, when a pattern is wrong. No pattern at all matches nothing. With -F the
// options' patterns become expressions.
int compilePatterns(PatternSet* set, Options* options);
void freePatterns(PatternSet* set);

// Finds the first match of each expression. The line needs a NUL behind it, because the library may look at
// the byte there. After a status other than ulkOk in its result nobody knows whether an expression matches;
// it then has no records.
void searchPatterns(PatternSet* set, const uint8_t* line, int32_t length);

// The pattern whose match begins first, of those that begin together the first given; -1 when none matches.
int32_t leftmostPattern(const PatternSet* set);

#endif
