// ulkgrep: prints the lines of files that match an expression, after the manner of grep.
//
// Whether a line matches is one search for the first match. Only when matches are to be shown one by one, in
// colour or with -o, all of them are looked for.
#include <errno.h>
#include <fcntl.h>
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <ulkch.h>
#include <unistd.h>

#include "expression.h"
#include "line_reader.h"
#include "messages.h"
#include "options.h"

#ifdef _WIN32
#include <io.h>
#else
#define O_BINARY 0
#endif

typedef struct Grep {
  Options options;
  Expression* expressions;
  size_t numExpressions;
  SpanList matches;  // of the line at hand
  int trouble;
} Grep;

typedef struct Line {
  const char* file;
  uint64_t number;
  const uint8_t* bytes;
  int32_t length;
} Line;

// --- compiling

// The library takes a backslash at the very end for a NUL byte; here it is a slip of the keyboard.
static int endsInLoneBackslash(const char* pattern) {
  const char* end = pattern + strlen(pattern);
  size_t backslashes = 0;
  while (end - backslashes > pattern && end[-1 - (ptrdiff_t)backslashes] == '\\') ++backslashes;
  return backslashes % 2 == 1;
}

static int compilePattern(Expression* expression, const char* pattern, const Options* options) {
  if (endsInLoneBackslash(pattern)) {
    complain("the pattern ends in a lone backslash");
    showCaret(pattern, (int32_t)strlen(pattern) - 1);
    return 0;
  }
  int32_t offset = 0;
  const ulkStatus status = compileExpression(expression, pattern, options->letters, options->limit, &offset);
  if (status == ulkOk) return 1;
  complain("%s (byte %d of the pattern): %s", statusName(status), (int)offset, statusMeaning(status));
  showCaret(pattern, offset);
  return 0;
}

static int compilePatterns(Grep* grep) {
  grep->expressions = calloc(grep->options.numPatterns, sizeof *grep->expressions);
  if (!grep->expressions) {
    complain("out of memory");
    return 0;
  }
  for (size_t i = 0; i < grep->options.numPatterns; ++i, ++grep->numExpressions)
    if (!compilePattern(&grep->expressions[i], grep->options.patterns[i], &grep->options)) return 0;
  return 1;
}

// --- printing

static const char* const kMatchColour = "\033[01;31m";
static const char* const kFileColour = "\033[35m";
static const char* const kNumberColour = "\033[32m";
static const char* const kSeparatorColour = "\033[36m";

static void setColour(const Grep* grep, const char* colour) {
  if (grep->options.colour) fputs(colour, stdout);
}

static void endColour(const Grep* grep) { setColour(grep, "\033[m"); }

static void printSeparator(const Grep* grep) {
  setColour(grep, kSeparatorColour);
  putchar(':');
  endColour(grep);
}

static void printFileName(const Grep* grep, const char* file) {
  if (grep->options.numFiles < 2) return;
  setColour(grep, kFileColour);
  fputs(file, stdout);
  endColour(grep);
  printSeparator(grep);
}

static void printPrefix(const Grep* grep, const Line* line) {
  printFileName(grep, line->file);
  if (!grep->options.lineNumbers) return;
  setColour(grep, kNumberColour);
  printf("%" PRIu64, line->number);
  endColour(grep);
  printSeparator(grep);
}

static void printBytes(const Line* line, int32_t start, int32_t end) {
  fwrite(line->bytes + start, 1, (size_t)(end - start), stdout);
}

static void printMatch(const Grep* grep, const Line* line, Span match) {
  setColour(grep, kMatchColour);
  printBytes(line, match.start, match.end);
  endColour(grep);
}

static void printMatchesOnly(const Grep* grep, const Line* line) {
  for (size_t i = 0; i < grep->matches.count; ++i) {
    printPrefix(grep, line);
    printMatch(grep, line, grep->matches.spans[i]);
    putchar('\n');
  }
}

static void printLine(const Grep* grep, const Line* line) {
  printPrefix(grep, line);
  int32_t printed = 0;
  for (size_t i = 0; i < grep->matches.count; ++i) {
    const Span match = grep->matches.spans[i];
    printBytes(line, printed, match.start);
    printMatch(grep, line, match);
    printed = match.end;
  }
  printBytes(line, printed, line->length);
  putchar('\n');
}

// --- searching

static void undecided(Grep* grep, const Line* line, const char* what, ulkStatus status) {
  complain("%s:%" PRIu64 ": %s: %s (%s)", line->file, line->number, what, statusName(status),
           statusMeaning(status));
  grep->trouble = 1;
}

static void collectMatches(Grep* grep, Expression* expression, const Line* line, Span first) {
  appendSpan(&grep->matches, first);
  const ulkStatus status = findEvery(expression, line->bytes, line->length, &grep->matches);
  if (status != ulkOk) undecided(grep, line, "only the first match is shown", status);
}

// Whether one of the expressions matches; collects the matches if they are to be shown.
static int searchLine(Grep* grep, const Line* line) {
  const int showMatches = !grep->options.countLines && (grep->options.onlyMatches || grep->options.colour);
  int matched = 0;
  grep->matches.count = 0;
  for (size_t i = 0; i < grep->numExpressions && (!matched || showMatches); ++i) {
    Span first;
    int found;
    const ulkStatus status = findFirst(&grep->expressions[i], line->bytes, line->length, &first, &found);
    if (status != ulkOk) undecided(grep, line, "the line may match", status);
    if (!found) continue;
    matched = 1;
    if (showMatches) collectMatches(grep, &grep->expressions[i], line, first);
  }
  keepLeftmost(&grep->matches);
  return matched;
}

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
    if (!searchLine(grep, &line)) continue;
    ++matchingLines;
    if (grep->options.countLines) continue;
    (grep->options.onlyMatches ? printMatchesOnly : printLine)(grep, &line);
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
  if (grep->options.countLines) {
    printFileName(grep, file);
    printf("%" PRIu64 "\n", matchingLines);
  }
  return matchingLines;
}

// --- the whole program

static int run(Grep* grep, int argc, char** argv) {
  if (!parseOptions(argc, argv, &grep->options) || !compilePatterns(grep)) return EXIT_TROUBLE;
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
  for (size_t i = 0; i < grep->numExpressions; ++i) freeExpression(&grep->expressions[i]);
  free(grep->expressions);
  free(grep->matches.spans);
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
