// The command line of ulkgrep.
#ifndef ULKGREP_OPTIONS_H
#define ULKGREP_OPTIONS_H

#include <stddef.h>
#include <stdint.h>

enum { EXIT_FOUND = 0, EXIT_NONE = 1, EXIT_TROUBLE = 2 };

typedef struct Options {
  char letters[5];       // those of "imsx" that were given
  int onlyMatches;       // -o
  int countLines;        // -c
  int lineNumbers;       // -n
  int everyMatch;        // -g
  const char* template;  // of -r; NULL without it
  int colour;
  int32_t limit;
  const char** patterns;  // to be freed
  size_t numPatterns;
  char** files;  // "-" stands for standard input
  int numFiles;
} Options;

// Returns 0, after a message, when the command line is wrong. Ends the program for --help.
int parseOptions(int argc, char** argv, Options* options);

#endif
