#include "output.h"

#include <inttypes.h>
#include <stdio.h>
#include <unistd.h>

#ifndef _WIN32
// One thread prints.
#define fwrite fwrite_unlocked
#define putchar putchar_unlocked
#endif

static void printPrefix(const Options* options, const Line* line, const char* pattern, char separator) {
  if (options->fileNames) printf("%s%c", line->file, options->nullNames ? '\0' : separator);
  if (options->lineNumbers) printf("%" PRIu64 "%c", line->number, separator);
  if (options->patternNames && pattern) printf("%s%c", pattern, separator);
}

static void printBytes(const uint8_t* start, const uint8_t* end) {
  fwrite(start, 1, (size_t)(end - start), stdout);
}

static void printEnd(const Line* line) {
  if (line->hasReturn) putchar('\r');
  putchar('\n');
}

static void printWhole(const Line* line) {
  if (line->hasNewline) {
    printBytes(line->bytes, line->bytes + line->length + line->hasReturn + 1);
  } else {
    printBytes(line->bytes, line->bytes + line->length);
    printEnd(line);
  }
}

static void printMatch(const Options* options, const ulkRegExpFind* match) {
  if (options->colour) fputs("\033[01;31m", stdout);
  printBytes(match->pFound, match->pFound + match->lenFound);
  if (options->colour) fputs("\033[m", stdout);
}

void prepareOutput(const Options* options) {
  static char buffer[1 << 16];
#ifdef _WIN32
  const int perLine = _IONBF;  // there is none by lines
#else
  const int perLine = _IOLBF;
#endif
  if (options->lineBuffered) {
    setvbuf(stdout, buffer, perLine, sizeof buffer);
  } else if (!isatty(STDOUT_FILENO)) {
    setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
  }
}

void printName(const Options* options, const char* file) {
  printf("%s%c", file, options->nullNames ? '\0' : '\n');
}

void printCount(const Options* options, const char* file, uint64_t count) {
  if (options->fileNames) printf("%s%c", file, options->nullNames ? '\0' : ':');
  printf("%" PRIu64 "\n", count);
}

void printSeparator(void) { puts("--"); }

void printContext(const Options* options, const Line* line) {
  printPrefix(options, line, NULL, '-');
  printWhole(line);
}

void printLine(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
               int32_t numMatches) {
  printPrefix(options, line, pattern, ':');
  if (numMatches == 0) {
    printWhole(line);
    return;
  }
  const uint8_t* printed = line->bytes;
  for (int32_t i = 0; i < numMatches; ++i) {
    printBytes(printed, matches[i].pFound);
    printMatch(options, &matches[i]);
    printed = matches[i].pFound + matches[i].lenFound;
  }
  printBytes(printed, line->bytes + line->length);
  printEnd(line);
}

void printMatches(const Options* options, const Line* line, const char* pattern, const ulkRegExpFind* matches,
                  int32_t numMatches) {
  for (int32_t i = 0; i < numMatches; ++i) {
    printPrefix(options, line, pattern, ':');
    printMatch(options, &matches[i]);
    printEnd(line);
  }
}
