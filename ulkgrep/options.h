// The command line of ulkgrep.
#ifndef ULKGREP_OPTIONS_H
#define ULKGREP_OPTIONS_H

#include <stddef.h>
#include <stdint.h>

#include "pattern_list.h"

enum { EXIT_FOUND = 0, EXIT_NONE = 1, EXIT_TROUBLE = 2 };

// What is printed of a file in place of its lines.
typedef enum Report {
  REPORT_LINES,
  REPORT_COUNT,
  REPORT_MATCHING_FILE,
  REPORT_OTHER_FILE,
  REPORT_NOTHING
} Report;

// What of a line a match must be.
typedef enum Extent { EXTENT_ANY, EXTENT_WORDS, EXTENT_LINE } Extent;

// Which names of files, or of directories, are searched.
typedef enum GlobKind { GLOB_INCLUDE, GLOB_EXCLUDE, GLOB_EXCLUDE_DIRECTORY } GlobKind;

typedef struct Glob {
  const char* pattern;
  GlobKind kind;
} Glob;

typedef struct Options {
  int ignoreCase;
  int fixedStrings;
  Extent extent;
  int invert;
  Report report;
  int onlyMatches;
  int lineNumbers;
  int patternNames;
  int fileNames;  // -1 until it is known whether there are several
  int text;       // search binary files like texts
  int crlf;       // a carriage return before the newline belongs to the line's end
  int silent;     // about files that cannot be read
  int recursive;
  int followLinks;   // with recursive
  int nullNames;     // a zero byte behind the names of files
  int lineBuffered;  // each line goes out at once
  uint64_t maxCount;
  uint64_t linesBefore;
  uint64_t linesAfter;
  const char* template;  // NULL without --replace
  int everyMatch;
  int colour;
  int32_t limit;
  PatternList patterns;
  Glob* globs;  // to be freed
  size_t numGlobs;
  char** files;  // "-" stands for standard input
  int numFiles;
  int hasFiles;  // they were named
} Options;

// Returns 0, after a message, when the command line is wrong. Ends the program for --help and --version.
int parseOptions(int argc, char** argv, Options* options);

#endif
