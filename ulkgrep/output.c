#include "output.h"

#include <inttypes.h>
#include <stdio.h>

static void printFileName(const Options* options, const char* file) {
  if (options->numFiles > 1) printf("%s:", file);
}

static void printPrefix(const Options* options, const Line* line, const char* pattern) {
  printFileName(options, line->file);
  if (options->lineNumbers) printf("%" PRIu64 ":", line->number);
  if (options->numPatterns > 1) printf("%s:", pattern);
}

static void printBytes(const uint8_t* start, const uint8_t* end) {
  fwrite(start, 1, (size_t)(end - start), stdout);
}

static void printMatch(const Options* options, const ulkRegExpFind* match) {
  if (options->colour) fputs("\033[01;31m", stdout);
  printBytes(match->pFound, match->pFound + match->lenFound);
  if (options->colour) fputs("\033[m", stdout);
}

void printCount(const Options* options, const char* file, uint64_t count) {
  printFileName(options, file);
  printf("%" PRIu64 "\n", count);
}

void printLine(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
               int32_t numMatches) {
  printPrefix(options, line, pattern);
  const uint8_t* printed = line->bytes;
  for (int32_t i = 0; i < numMatches; ++i) {
    printBytes(printed, matches[i].pFound);
    printMatch(options, &matches[i]);
    printed = matches[i].pFound + matches[i].lenFound;
  }
  printBytes(printed, line->bytes + line->length);
  putchar('\n');
}

void printMatches(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
                  int32_t numMatches) {
  for (int32_t i = 0; i < numMatches; ++i) {
    printPrefix(options, line, pattern);
    printMatch(options, &matches[i]);
    putchar('\n');
  }
}
