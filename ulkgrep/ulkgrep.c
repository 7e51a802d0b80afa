// ulkgrep: prints the lines of files that match an expression, after the manner of grep.
//
// Whether a line matches is one search for the first match. Only when matches are to be shown one by one, in
// colour or with -o, or to be replaced with -g, all of them are looked for.
#include <errno.h>
#include <fcntl.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <ulkch.h>
#include <unistd.h>

#include "line_reader.h"
#include "messages.h"
#include "options.h"
#include "output.h"
#include "pattern_set.h"
#include "replacement.h"

#ifdef _WIN32
#include <io.h>
#else
#define O_BINARY 0
#endif

typedef struct Grep {
  Options options;
  PatternSet patterns;
  Replacement replacement;  // with the template of -r, or an empty one
  int trouble;
} Grep;

// --- one line

static void reportLine(Grep* grep, const Line* line, const char* what, const char* why) {
  complain("%s:%" PRIu64 ": %s: %s", line->file, line->number, what, why);
  grep->trouble = 1;
}

// The index of the pattern that matches, -1 for none.
static int32_t searchLine(Grep* grep, const Line* line) {
  PatternSet* patterns = &grep->patterns;
  searchPatterns(patterns, line->bytes, line->length);
  for (int32_t i = 0; i < patterns->count; ++i)
    if (patterns->results[i].status != ulkOk)
      reportLine(grep, line, "the line may match", describe(patterns->results[i].status));
  return leftmostPattern(patterns);
}

// Makes the records of matches one for each match, cut at the end of the line, and returns their number.
// Drops the empty ones, which have nothing to show, and what g finds in the byte behind an empty one: it
// looks there as if the text ended behind that byte.
static int32_t keepVisible(const Line* line, ulkRegExpFind* records, int32_t numRecords,
                           int32_t recordsPerMatch) {
  const uint8_t* end = line->bytes + line->length;
  const uint8_t* last = NULL;
  int32_t kept = 0;
  for (int32_t i = 0; i < numRecords; i += recordsPerMatch) {
    ulkRegExpFind match = records[i];
    if (match.pFound + match.lenFound > end) match.lenFound = (int32_t)(end - match.pFound);
    if (match.lenFound > 0 && match.pFound != last) records[kept++] = match;
    last = match.pFound;
  }
  return kept;
}

static void showMatches(Grep* grep, const Line* line, int32_t pattern) {
  const ulkRegExpMultiFind* first = &grep->patterns.results[pattern];
  Expression* expression = &grep->patterns.expressions[pattern];
  ulkRegExpFind* records = first->pFind;
  int32_t numRecords = first->numFind;
  if (line->length > 0 && (grep->options.colour || grep->options.onlyMatches)) {
    const ulkStatus status =
        replaceEvery(expression, &grep->replacement, first->numFind, line->bytes, line->length);
    if (status == ulkOk) {
      records = grep->replacement.records;
      numRecords = grep->replacement.numRecords;
    } else {
      reportLine(grep, line, "only the first match is shown", describe(status));
    }
  }
  (grep->options.onlyMatches ? printMatches : printLine)(
      &grep->options, line, expression->pattern, records,
      keepVisible(line, records, numRecords, first->numFind));
}

static ulkStatus replaceIn(Grep* grep, const Line* line, int32_t pattern) {
  Expression* expression = &grep->patterns.expressions[pattern];
  const int32_t recordsPerMatch = grep->patterns.results[pattern].numFind;
  if (grep->options.everyMatch)
    return replaceEvery(expression, &grep->replacement, recordsPerMatch, line->bytes, line->length);
  return replaceMatches(&grep->replacement, expression->first, REPLACE_FIRST, recordsPerMatch, line->bytes,
                        line->length);
}

static void showReplaced(Grep* grep, const Line* line, int32_t pattern) {
  Line shown = *line;
  if (line->length > 0) {  // the library replaces nothing in an empty text
    const ulkStatus status = replaceIn(grep, line, pattern);
    if (status == ulkOk) {
      shown.bytes = grep->replacement.text;
      shown.length = grep->replacement.length;
    } else {
      const int isUnset = status == ulkErrRegExpBackRef;
      reportLine(grep, line, "the line is left as it is",
                 isUnset ? "the template names a group that took no part in a match" : describe(status));
    }
  }
  printLine(&grep->options, &shown, grep->options.patterns[pattern], NULL, 0);
}

static void showLine(Grep* grep, const Line* line, int32_t leftmost) {
  if (grep->options.template) {
    showReplaced(grep, line, leftmost);
  } else if (grep->options.onlyMatches) {
    for (int32_t i = 0; i < grep->patterns.count; ++i)
      if (grep->patterns.results[i].numFind > 0) showMatches(grep, line, i);
  } else {
    showMatches(grep, line, leftmost);
  }
}

// --- files

// Returns the number of matching lines.
static uint64_t searchFile(Grep* grep, const char* file, int descriptor) {
  LineReader reader = {.file = descriptor};
  Line line = {.file = file};
  uint64_t matchingLines = 0;
  size_t length;
  ReadResult result;
  while ((result = readLine(&reader, &line.bytes, &length)) == READ_LINE && length <= INT32_MAX) {
    ++line.number;
    line.length = (int32_t)length;
    const int32_t pattern = searchLine(grep, &line);
    if (pattern < 0) continue;
    ++matchingLines;
    if (!grep->options.countLines) showLine(grep, &line, pattern);
  }
  if (result != READ_END) {
    complain("%s: %s", file,
             result == READ_ERROR ? strerror(errno) : "a line is longer than 2147483647 bytes");
    grep->trouble = 1;
  }
  freeLineReader(&reader);
  return matchingLines;
}

static uint64_t searchNamed(Grep* grep, const char* name) {
  const int isStandardInput = strcmp(name, "-") == 0;
  const char* const file = isStandardInput ? "(standard input)" : name;
  const int descriptor = isStandardInput ? STDIN_FILENO : open(name, O_RDONLY | O_BINARY);
  if (descriptor < 0) {
    complain("%s: %s", name, strerror(errno));
    grep->trouble = 1;
    return 0;
  }
  const uint64_t matchingLines = searchFile(grep, file, descriptor);
  if (!isStandardInput) close(descriptor);
  if (grep->options.countLines) printCount(&grep->options, file, matchingLines);
  return matchingLines;
}

// --- the whole program

static int prepareTemplate(Grep* grep) {
  const char* template = grep->options.template ? grep->options.template : "";
  const ulkStatus status = prepareReplacement(&grep->replacement, template);
  if (status != ulkOk) complain("the template '%s': %s", template, describe(status));
  return status == ulkOk;
}

static int run(Grep* grep, int argc, char** argv) {
  if (!parseOptions(argc, argv, &grep->options) || !prepareTemplate(grep) ||
      !compilePatterns(&grep->patterns, &grep->options))
    return EXIT_TROUBLE;
  uint64_t matchingLines = 0;
  for (int i = 0; i < grep->options.numFiles; ++i) matchingLines += searchNamed(grep, grep->options.files[i]);
  if (fflush(stdout) != 0 || ferror(stdout)) {
    complain("cannot write: %s", strerror(errno));
    grep->trouble = 1;
  }
  if (grep->trouble) return EXIT_TROUBLE;
  return matchingLines > 0 ? EXIT_FOUND : EXIT_NONE;
}

static void freeGrep(Grep* grep) {
  freePatterns(&grep->patterns);
  freeReplacement(&grep->replacement);
  free(grep->options.patterns);
}

int main(int argc, char** argv) {
#ifdef _WIN32
  _setmode(STDIN_FILENO, O_BINARY);
  _setmode(STDOUT_FILENO, O_BINARY);
#endif
  Grep grep = {0};
  const int status = run(&grep, argc, argv);
  freeGrep(&grep);
  return status;
}
