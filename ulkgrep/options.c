#include "options.h"

#include <errno.h>
#include <getopt.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "memory.h"
#include "messages.h"

// A search that fails takes a step at every position at least: the library's own limit of 10000 is spent on a
// long line before anything has gone wrong.
enum { kDefaultLimit = 10000000 };

static const char kUsage[] =
    "usage: ulkgrep [OPTION]... PATTERN [FILE...]\n"
    "       ulkgrep [OPTION]... -e PATTERN [-e PATTERN]... [FILE...]\n";

static const char kHelp[] =
    "Print the lines that match PATTERN. Without FILE, or where FILE is -, read standard input;\n"
    "with -r and without FILE, search the current directory.\n"
    "\n"
    "What matches:\n"
    "  -e, --regexp=PATTERN     look for PATTERN; may be given several times. Each line of PATTERN\n"
    "                           is a pattern by itself, and a line matches that matches one of them\n"
    "  -f, --file=FILE          take the lines of FILE for patterns; as -e\n"
    "  -E, -P                   nothing: accepted for those who are used to it\n"
    "  -F, --fixed-strings      PATTERN is a string and not an expression\n"
    "  -i, -y, --ignore-case    ignore the case of the letters A to Z\n"
    "  -w, --word-regexp        a match neither follows nor precedes a letter, digit or _\n"
    "  -x, --line-regexp        a match is a whole line\n"
    "  -v, --invert-match       take the lines that do not match\n"
    "      --limit=N            steps that the search of one line may take (default 10000000)\n"
    "\n"
    "What is printed:\n"
    "  -o, --only-matching      the matches only, each on a line of its own\n"
    "      --replace=TEMPLATE   the line with the first match replaced; in TEMPLATE $& stands for\n"
    "                           the match and $1 to $9 for its groups. Empty lines stay empty,\n"
    "                           and a line stays as it is, with an error, where a group that\n"
    "                           TEMPLATE names took no part in a match: write (x|) for (x)?\n"
    "  -g, --global             with --replace: replace every match\n"
    "  -c, --count              the number of lines, for each file\n"
    "  -l, --files-with-matches the names of files with such lines\n"
    "  -L, --files-without-match the names of the other files. Either prevails over -c\n"
    "  -q, --quiet              nothing; end at the first line\n"
    "  -m, --max-count=N        only the first N lines of each file\n"
    "  -A, --after-context=N    N more lines behind each\n"
    "  -B, --before-context=N   N more lines before each\n"
    "  -C, --context=N          both\n"
    "  -n, --line-number        line numbers\n"
    "  -H, --with-filename      file names; so it is where there are several files, or -r\n"
    "  -h, --no-filename        no file names\n"
    "  -Z, --null               a zero byte behind file names, in place of what stands there\n"
    "      --which              with several PATTERNs, the one that matches; of several that match,\n"
    "                           the one whose match begins first\n"
    "      --color=WHEN         mark matches: always, never, or auto (the default), on a terminal;\n"
    "                           --color is always\n"
    "      --line-buffered      print each line at once\n"
    "\n"
    "Files:\n"
    "  -r, --recursive          search the files in directories, but follow no symbolic links\n"
    "  -R, --dereference-recursive\n"
    "                           the same, and follow them (not on Windows)\n"
    "      --include=GLOB       only files with such names; * and ? stand for any text and any byte\n"
    "      --exclude=GLOB       no files with such names; of several that fit, the last one counts\n"
    "      --exclude-dir=GLOB   with -r and -R: no directories with such names\n"
    "  -a, --text               print the lines of binary files (with a zero byte) too\n"
    "      --crlf               a carriage return before a newline belongs to the line's end, as it\n"
    "                           does on Windows without being told\n"
    "  -U, --binary             on Windows: it belongs to the line\n"
    "  -s, --no-messages        say nothing about files that cannot be read\n"
    "      --help               print this help\n"
    "  -V, --version            print the version\n"
    "\n"
    "The exit status is 0 when a line was taken, 1 when none was, 2 when there was trouble. A line on\n"
    "which the steps ran out is reported as trouble: nobody knows whether it matches.\n";

static int usageError(void) {
  fprintf(stderr, "%sTry --help.\n", kUsage);
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

static void printVersion(void) {
  const ulkLibraryVersion* version = ulkchGetLibVersion();
  printf("ulkgrep of ulkch %d.%d\n", (int)version->major, (int)version->minor);
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
      printf("%s%s", kUsage, kHelp);
      exit(EXIT_FOUND);
    case 'V':
      printVersion();
      exit(EXIT_FOUND);
    case '?':
      return usageError();
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
  static char name[] = "ulkgrep", standardInput[] = "-", here[] = ".";
  static char* alone[1];
  *options = (Options){.limit = kDefaultLimit,
                       .colour = isatty(STDOUT_FILENO),
                       .maxCount = UINT64_MAX,
                       .fileNames = -1,
#ifdef _WIN32
                       .crlf = 1
#endif
  };
  if (argc > 0) argv[0] = name;  // which begins the messages of getopt_long
  int letter, hasPatterns = 0;
  while ((letter = getopt_long(argc, argv, "e:f:EPFiywxvogclLqm:A:B:C:nHhZrRaUsV", kLong, NULL)) != -1) {
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
