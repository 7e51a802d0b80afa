// How a file is searched: the filter runs over many lines at once and stops at those that may match; these
// are searched one by one. Whether a line matches is one search for the first match. Only when matches are to
// be shown one by one, in colour or with -o, or to be replaced with -g, all of them are looked for.
#include "search.h"

#include <errno.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>
#include <ulkch.h>

#include "messages.h"
#include "output.h"
#include "text_buffer.h"

// --- where we are

struct FileSearch {
  Grep* grep;
  const char* file;
  TextBuffer buffer;
  uint64_t taken;      // lines
  size_t counted;      // up to here, in the buffer, lines have been counted; the rest when it matters
  uint64_t number;     // of the line at `counted`
  uint64_t printed;    // behind the last line printed, in the file
  uint64_t linesLeft;  // of the context behind the last line taken
  int isBinary;
  int isEnough;    // what the filter finds: nothing else is to be known about a match
  int unfiltered;  // the filter took too long in the lines at hand
};

static uint64_t numberAt(FileSearch* search, size_t start) {
  if (start >= search->counted) {
    search->number += countNewlines(search->buffer.bytes + search->counted, search->buffer.bytes + start);
    search->counted = start;
  }
  return search->number;
}

// --- one line

static void reportLine(Grep* grep, const Line* line, const char* what, const char* why) {
  const uint64_t number = numberAt(grep->file, (size_t)(line->bytes - grep->file->buffer.bytes));
  complain("%s:%" PRIu64 ": %s: %s", line->file, number, what, why);
  grep->trouble = 1;
}

// The index of the pattern that matches, -1 for none.
static int32_t searchLine(Grep* grep, const Line* line) {
  PatternSet* patterns = &grep->patterns;
  // A search may look at the byte behind the line: for each line it is the same.
  uint8_t* const behind = (uint8_t*)line->bytes + line->length;
  const uint8_t kept = *behind;
  *behind = 0;
  searchPatterns(patterns, line->bytes, line->length);
  *behind = kept;
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
  const int hasOthers = line->length > 0 && !expression->isAtStart;
  if (hasOthers && (grep->options.colour || grep->options.onlyMatches)) {
    const ulkStatus status = findEvery(expression, first->numFind, line->bytes, line->length);
    if (status == ulkOk) {
      records = expression->found.records;
      numRecords = expression->found.numRecords;
    } else {
      reportLine(grep, line, "only the first match is shown", describe(status));
    }
  }
  (grep->options.onlyMatches ? printMatches : printLine)(
      &grep->options, line, grep->options.patterns.items[pattern], records,
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
      shown.hasNewline = 0;
    } else {
      const int isUnset = status == ulkErrRegExpBackRef;
      reportLine(grep, line, "the line is left as it is",
                 isUnset ? "the template names a group that took no part in a match" : describe(status));
    }
  }
  printLine(&grep->options, &shown, grep->options.patterns.items[pattern], NULL, 0);
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

// --- the lines of a file

static Line lineAt(FileSearch* search, size_t start, size_t end) {
  TextBuffer* buffer = &search->buffer;
  Line line = {.file = search->file, .bytes = buffer->bytes + start};
  if (search->grep->options.lineNumbers) line.number = numberAt(search, start);
  line.hasReturn = search->grep->options.crlf && end > start && buffer->bytes[end - 1] == '\r';
  line.length = (int32_t)(end - start) - line.hasReturn;
  line.hasNewline = end < buffer->linesEnd;
  return line;
}

static size_t nextLine(const TextBuffer* buffer, size_t end) {
  return end < buffer->linesEnd ? end + 1 : buffer->linesEnd;
}

static void printContextLine(FileSearch* search, size_t start, size_t end) {
  const Line line = lineAt(search, start, end);
  printContext(&search->grep->options, &line);
  search->printed = search->buffer.base + nextLine(&search->buffer, end);
}

// Lines that are not taken: some of them belong to the line taken before.
static void passLines(FileSearch* search, size_t start, size_t end) {
  while (search->linesLeft > 0 && start < end) {
    const size_t at = lineEnd(&search->buffer, start);
    printContextLine(search, start, at);
    start = nextLine(&search->buffer, at);
    --search->linesLeft;
  }
}

// Where the lines begin that belong to one taken at `start`.
static size_t contextStart(const FileSearch* search, size_t start) {
  const uint64_t printed = search->printed;
  for (uint64_t i = search->grep->options.linesBefore; i > 0 && start > 0; --i) {
    if (search->buffer.base + start <= printed) break;
    start = lineBefore(&search->buffer, start);
  }
  return start;
}

static void printLinesBefore(FileSearch* search, size_t start) {
  const Options* options = &search->grep->options;
  size_t from = contextStart(search, start);
  if (options->linesBefore + options->linesAfter > 0) {
    if (search->grep->hasPrinted && (search->taken == 1 || search->buffer.base + from > search->printed))
      printSeparator();
    // Numbers of lines that were counted already are found again from the line taken.
    const size_t counted = search->counted;
    const uint64_t number = search->number;
    if (from < counted) {
      search->number -= countNewlines(search->buffer.bytes + from, search->buffer.bytes + counted);
      search->counted = from;
    }
    while (from < start) {
      const size_t end = lineEnd(&search->buffer, from);
      printContextLine(search, from, end);
      from = end + 1;
    }
    search->counted = counted;
    search->number = number;
  }
  search->grep->hasPrinted = 1;
}

// Returns 0 when nothing more of the file is of interest.
static int countLine(FileSearch* search) {
  const Options* options = &search->grep->options;
  ++search->taken;
  const int first = options->report != REPORT_LINES && options->report != REPORT_COUNT;
  return !first && search->taken < options->maxCount;
}

// As countLine, and shows the line where lines are shown.
static int takeLine(FileSearch* search, size_t start, const Line* line, int32_t pattern) {
  Grep* grep = search->grep;
  const Options* options = &grep->options;
  const int goesOn = countLine(search);
  if (options->report == REPORT_LINES) {
    if (search->isBinary) {
      printf("ulkgrep: %s: binary file matches\n", search->file);
      return 0;
    }
    printLinesBefore(search, start);
    if (pattern < 0) {
      if (!options->onlyMatches) printLine(options, line, NULL, NULL, 0);
    } else {
      showLine(grep, line, pattern);
    }
    search->printed = search->buffer.base +
                      nextLine(&search->buffer, start + (size_t)line->length + (size_t)line->hasReturn);
    search->linesLeft = options->linesAfter;
  }
  return goesOn;
}

// The line behind which no line before `start` may match.
static size_t findCandidate(FileSearch* search, size_t start) {
  const TextBuffer* buffer = &search->buffer;
  if (search->unfiltered || buffer->linesEnd - start > INT32_MAX) return start;
  // With its last newline: "^" does not match at the end of a text, but in a last line that is empty.
  const int32_t length = (int32_t)(buffer->linesEnd - start);
  const int32_t found = findPossibleLine(&search->grep->filter, buffer->bytes + start, length);
  if (found < 0) {
    search->unfiltered = 1;
    return start;
  }
  if (found > length || (found == length && buffer->bytes[buffer->linesEnd - 1] == '\n'))
    return buffer->linesEnd;
  size_t line = start + (size_t)found;
  while (line > start && buffer->bytes[line - 1] != '\n') --line;
  return line;
}

// Takes the line, or passes it. Returns as takeLine does, and -1 where the line is too long.
static int takeOrPassLine(FileSearch* search, size_t start, size_t end) {
  const Options* options = &search->grep->options;
  const int isKnown = search->isEnough && !search->unfiltered;
  if (end - start > INT32_MAX) return -1;
  if (isKnown && !options->invert && options->report != REPORT_LINES) return countLine(search);
  const Line line = lineAt(search, start, end);
  const int32_t pattern = isKnown ? -1 : searchLine(search->grep, &line);
  if ((isKnown || pattern >= 0) != options->invert) return takeLine(search, start, &line, pattern);
  if (search->linesLeft > 0) passLines(search, start, nextLine(&search->buffer, end));
  return 1;
}

// Takes what is to be taken of the whole lines from `start` on. Returns as takeOrPassLine does.
static int searchLines(FileSearch* search, size_t start) {
  TextBuffer* buffer = &search->buffer;
  while (start < buffer->linesEnd) {
    const size_t candidate = findCandidate(search, start);
    while (search->grep->options.invert && start < candidate) {
      const size_t end = lineEnd(buffer, start);
      const Line line = lineAt(search, start, end);
      if (!takeLine(search, start, &line, -1)) return 0;
      start = nextLine(buffer, end);
    }
    if (search->linesLeft > 0) passLines(search, start, candidate);
    start = candidate;
    if (start >= buffer->linesEnd) break;
    const size_t end = lineEnd(buffer, start);
    const int goesOn = takeOrPassLine(search, start, end);
    if (goesOn <= 0) return goesOn;
    start = nextLine(buffer, end);
  }
  return 1;
}

// Goes on with the lines behind those at hand, which begin at *start then.
static ReadResult readOn(FileSearch* search, size_t* start) {
  TextBuffer* buffer = &search->buffer;
  const size_t next = buffer->linesEnd;
  numberAt(search, next);
  const size_t keep = contextStart(search, next);
  forgetFound(&search->grep->filter);
  const ReadResult result = readLines(buffer, keep);
  search->counted -= keep;
  *start = next - keep;
  search->unfiltered = 0;
  return result;
}

uint64_t searchFile(Grep* grep, const char* file, int descriptor) {
  FileSearch search = {.grep = grep, .file = file, .buffer = {.file = descriptor}, .number = 1};
  grep->file = &search;
  const Options* options = &grep->options;
  const int isPlain =
      !options->colour && !options->onlyMatches && !options->template && !options->patternNames;
  search.isEnough = grep->filter.isExact && (options->report != REPORT_LINES || isPlain);
  int isFirst = 1;
  int goesOn = grep->options.maxCount > 0;
  ReadResult result = READ_END;
  while (goesOn > 0) {
    size_t start;
    result = readOn(&search, &start);
    if (result != READ_LINES) break;
    TextBuffer* buffer = &search.buffer;
    if (isFirst && !grep->options.text) search.isBinary = memchr(buffer->bytes, 0, buffer->end) != NULL;
    isFirst = 0;
    goesOn = searchLines(&search, start);
    if (goesOn == 0 && search.linesLeft > 0)
      passLines(&search, (size_t)(search.printed - buffer->base), buffer->linesEnd);
  }
  if (result == READ_ERROR || goesOn < 0) {
    if (!grep->options.silent)
      complain("%s: %s", file, goesOn < 0 ? "a line is longer than 2147483647 bytes" : strerror(errno));
    grep->trouble = 1;
  }
  freeBuffer(&search.buffer);
  grep->file = NULL;
  return search.taken;
}
