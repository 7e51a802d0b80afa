// The lines of one file: which are taken, and what is printed of them.
#ifndef ULKGREP_SEARCH_H
#define ULKGREP_SEARCH_H

#include <stdint.h>

#include "line_filter.h"
#include "options.h"
#include "pattern_set.h"
#include "replacement.h"

typedef struct FileSearch FileSearch;

typedef struct Grep {
  Options options;
  PatternSet patterns;
  LineFilter filter;
  Replacement replacement;  // with the template of --replace, or an empty one
  FileSearch* file;         // that is searched
  int trouble;
  int hasPrinted;  // lines, between which separators stand
} Grep;

// Returns the number of lines taken; with -q, -l and -L it ends at the first.
uint64_t searchFile(Grep* grep, const char* file, int descriptor);

#endif
