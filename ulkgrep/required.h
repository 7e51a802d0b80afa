// What a pattern's matches must contain.
#ifndef ULKGREP_REQUIRED_H
#define ULKGREP_REQUIRED_H

#include <stddef.h>

// Finds a string that stands in every match of a pattern, without regard to options: the longest that is to
// be had. Writes it, without a terminator, to `string`, which has room for the pattern, and returns its
// length; 0 when there is none or the pattern is none to be sure about. *isWhole tells whether the pattern is
// this string and nothing else.
size_t findRequired(const char* pattern, char* string, int* isWhole);

// Behind the class that begins at `at`; null when it has no end or more in it than a look can tell.
const char* skipClass(const char* at);

// Behind the quantifier at `at`, or the brace that may be one, of the pattern that begins at `start`; null
// when it is a lazy one with which a match may end before the pattern does.
const char* skipQuantifier(const char* at, const char* start);

#endif
