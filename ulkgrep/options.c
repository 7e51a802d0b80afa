#include "options.h"

#include <errno.h>
#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "help.h"
#include "memory.h"
#include "messages.h"

// A search that fails takes a step at every position at least: the library's own limit of 10000 is spent on a
// long line before anything has gone wrong.
enum { kDefaultLimit = 10000000 };

static int usageError(void) {
  fputs(usageText, stderr);
  fputs("Try --help.\n", stderr);
  return 0;
}

static int parseNumber(const char* name, const char* text, int64_t most, int64_t* number) {
  char* end;
  errno = 0;
  *number = strtoll(text, &end, 10);
  if (errno == 0 && end != text && !*end && *number >= 0 && *number <= most) return 1;
  complain("%s takes a number from 0 to %lld, not '%s'", name, (long long)most, text);
  return 0;
}

static int parseColour(const char* when, int* colour) {
  if (!when || strcmp(when, "always") == 0) {
    *colour = 1;
  } else if (strcmp(when, "never") == 0) {
    *colour = 0;
  } else if (strcmp(when, "auto") == 0) {
    *colour = isatty(STDOUT_FILENO);
  } else {
    complain("--color takes always, never or auto, not '%s'", when);
    return 0;
  }
  return 1;
}

enum { LIMIT = 256, COLOUR, HELP, REPLACE, INCLUDE, EXCLUDE, EXCLUDE_DIR, WHICH, CRLF, LINE_BUFFERED };

// The colon in front asks for a colon in return where an argument is missing.
static const char kShort[] = ":e:f:EPFiywxvogclLqm:A:B:C:nHhZrRaUsV";

static const struct option kLong[] = {{"regexp", required_argument, NULL, 'e'},
                                      {"file", required_argument, NULL, 'f'},
                                      {"extended-regexp", no_argument, NULL, 'E'},
                                      {"perl-regexp", no_argument, NULL, 'P'},
                                      {"fixed-strings", no_argument, NULL, 'F'},
                                      {"ignore-case", no_argument, NULL, 'i'},
                                      {"word-regexp", no_argument, NULL, 'w'},
                                      {"line-regexp", no_argument, NULL, 'x'},
                                      {"invert-match", no_argument, NULL, 'v'},
                                      {"limit", required_argument, NULL, LIMIT},
                                      {"only-matching", no_argument, NULL, 'o'},
                                      {"replace", required_argument, NULL, REPLACE},
                                      {"global", no_argument, NULL, 'g'},
                                      {"count", no_argument, NULL, 'c'},
                                      {"files-with-matches", no_argument, NULL, 'l'},
                                      {"files-without-match", no_argument, NULL, 'L'},
                                      {"quiet", no_argument, NULL, 'q'},
                                      {"silent", no_argument, NULL, 'q'},
                                      {"max-count", required_argument, NULL, 'm'},
                                      {"after-context", required_argument, NULL, 'A'},
                                      {"before-context", required_argument, NULL, 'B'},
                                      {"context", required_argument, NULL, 'C'},
                                      {"line-number", no_argument, NULL, 'n'},
                                      {"with-filename", no_argument, NULL, 'H'},
                                      {"no-filename", no_argument, NULL, 'h'},
                                      {"which", no_argument, NULL, WHICH},
                                      {"color", optional_argument, NULL, COLOUR},
                                      {"colour", optional_argument, NULL, COLOUR},
                                      {"recursive", no_argument, NULL, 'r'},
                                      {"dereference-recursive", no_argument, NULL, 'R'},
                                      {"include", required_argument, NULL, INCLUDE},
                                      {"exclude", required_argument, NULL, EXCLUDE},
                                      {"exclude-dir", required_argument, NULL, EXCLUDE_DIR},
                                      {"null", no_argument, NULL, 'Z'},
                                      {"line-buffered", no_argument, NULL, LINE_BUFFERED},
                                      {"text", no_argument, NULL, 'a'},
                                      {"crlf", no_argument, NULL, CRLF},
                                      {"binary", no_argument, NULL, 'U'},
                                      {"no-messages", no_argument, NULL, 's'},
                                      {"help", no_argument, NULL, HELP},
                                      {"version", no_argument, NULL, 'V'},
                                      {0}};

// getopt_long itself would say it differently on every system. `letter` is what it returned for the word; on
// some a colon too where an argument is one too many.
static int refuseOption(int letter, const char* word) {
  const int isLong = strncmp(word, "--", 2) == 0;
  if (letter == ':' && !isLong) {
    complain("-%c needs an argument", optopt);
  } else if (letter == ':' && !strchr(word, '=')) {
    complain("%s needs an argument", word);
  } else if (optopt > 0 && optopt < LIMIT && !strchr(kShort, optopt)) {
    complain("-%c is no option", optopt);
  } else {
    complain("%s is no option, the beginning of several, or takes no argument", word);
  }
  return usageError();
}

static int parseCounts(Options* options, int letter, const char* text) {
  const char name[] = {'-', (char)letter, '\0'};
  int64_t number;
  if (letter == LIMIT) {
    if (!parseNumber("--limit", text, INT32_MAX, &number)) return 0;
    options->limit = (int32_t)number;
    return 1;
  }
  if (!parseNumber(name, text, INT32_MAX, &number)) return 0;
  if (letter == 'm') options->maxCount = (uint64_t)number;
  if (letter == 'A' || letter == 'C') options->linesAfter = (uint64_t)number;
  if (letter == 'B' || letter == 'C') options->linesBefore = (uint64_t)number;
  return 1;
}

// The switch that an option turns on, and to what.
static int* switchOf(Options* options, int letter, int* value) {
  *value = 1;
  switch (letter) {
    case 'F':
      return &options->fixedStrings;
    case 'i':
    case 'y':
      return &options->ignoreCase;
    case 'v':
      return &options->invert;
    case 'o':
      return &options->onlyMatches;
    case 'g':
      return &options->everyMatch;
    case 'n':
      return &options->lineNumbers;
    case 'H':
      return &options->fileNames;
    case 'h':
      *value = 0;
      return &options->fileNames;
    case WHICH:
      return &options->patternNames;
    case 'r':
      return &options->recursive;
    case 'Z':
      return &options->nullNames;
    case LINE_BUFFERED:
      return &options->lineBuffered;
    case 'a':
      return &options->text;
    case CRLF:
      return &options->crlf;
    case 'U':
      *value = 0;
      return &options->crlf;
    case 's':
      return &options->silent;
    default:
      return NULL;
  }
}

static void addGlob(Options* options, const char* pattern, GlobKind kind) {
  options->globs = reallocate(options->globs, options->numGlobs + 1, sizeof *options->globs);
  options->globs[options->numGlobs++] = (Glob){pattern, kind};
}

// What is reported of files: names prevail over counts, and nothing over both.
static void setReport(Options* options, Report report) {
  const int isName = report == REPORT_MATCHING_FILE || report == REPORT_OTHER_FILE;
  if (options->report == REPORT_LINES || report == REPORT_NOTHING ||
      (isName && options->report != REPORT_NOTHING))
    options->report = report;
}

static int parseOption(Options* options, int letter, char* argument) {
  int value;
  int* const target = switchOf(options, letter, &value);
  if (target) {
    *target = value;
    return 1;
  }
  switch (letter) {
    case 'e':
      addPatterns(&options->patterns, argument);
      return 1;
    case 'f':
      return addPatternsOfFile(&options->patterns, argument, options->crlf);
    case 'E':
    case 'P':
      return 1;
    case INCLUDE:
      addGlob(options, argument, GLOB_INCLUDE);
      return 1;
    case EXCLUDE:
      addGlob(options, argument, GLOB_EXCLUDE);
      return 1;
    case EXCLUDE_DIR:
      addGlob(options, argument, GLOB_EXCLUDE_DIRECTORY);
      return 1;
    case 'R':
      options->recursive = 1;
#ifndef _WIN32
      options->followLinks = 1;
#endif
      return 1;
    case REPLACE:
      options->template = argument;
      return 1;
    case 'w':
      if (options->extent == EXTENT_ANY) options->extent = EXTENT_WORDS;
      return 1;
    case 'x':
      options->extent = EXTENT_LINE;
      return 1;
    case 'c':
      setReport(options, REPORT_COUNT);
      return 1;
    case 'l':
      setReport(options, REPORT_MATCHING_FILE);
      return 1;
    case 'L':
      setReport(options, REPORT_OTHER_FILE);
      return 1;
    case 'q':
      setReport(options, REPORT_NOTHING);
      return 1;
    case COLOUR:
      return parseColour(argument, &options->colour);
    case HELP:
      printHelp();
      exit(EXIT_FOUND);
    case 'V':
      printVersion();
      exit(EXIT_FOUND);
    default:
      return parseCounts(options, letter, argument);
  }
}

static int fitTogether(const Options* options) {
  const char* fault = NULL;
  if (options->template && options->onlyMatches) fault = "-o and --replace do not go together";
  if (options->template && options->invert) fault = "-v and --replace do not go together";
  if (options->everyMatch && !options->template)
    fault = "-g replaces every match: it needs --replace=TEMPLATE";
  if (fault) complain("%s", fault);
  return !fault;
}

int parseOptions(int argc, char** argv, Options* options) {
  static char standardInput[] = "-", here[] = ".";
  static char* alone[1];
  *options = (Options){.limit = kDefaultLimit,
                       .colour = isatty(STDOUT_FILENO),
                       .maxCount = UINT64_MAX,
                       .fileNames = -1,
#ifdef _WIN32
                       .crlf = 1
#endif
  };
  int letter, hasPatterns = 0;
  opterr = 0;
  while ((letter = getopt_long(argc, argv, kShort, kLong, NULL)) != -1) {
    if (letter == '?' || letter == ':') return refuseOption(letter, argv[optind - 1]);
    if (!parseOption(options, letter, optarg)) return 0;
    if (letter == 'e' || letter == 'f') hasPatterns = 1;
  }
  if (!fitTogether(options)) return 0;
  if (!hasPatterns) {
    if (optind >= argc) return usageError();
    addPatterns(&options->patterns, argv[optind++]);
  }
  alone[0] = options->recursive ? here : standardInput;
  options->hasFiles = optind < argc;
  options->numFiles = optind < argc ? argc - optind : 1;
  options->files = optind < argc ? argv + optind : alone;
  if (options->fileNames < 0) options->fileNames = options->numFiles > 1 || options->recursive;
  if (options->report != REPORT_LINES || options->onlyMatches) options->linesBefore = options->linesAfter = 0;
  return 1;
}
