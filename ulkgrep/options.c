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
    "usage: ulkgrep [-imsx] [-o] [-c] [-n] [-r TEMPLATE [-g]] [-e PATTERN]... [--limit N] [--color[=WHEN]]\n"
    "               PATTERN [FILE...]\n";

static const char kHelp[] =
    "Print the lines that match PATTERN. Without FILE, or where FILE is -, read standard input.\n"
    "\n"
    "  -i -m -s -x   options of the expression: ignore case; ^ and $ match beside every newline;\n"
    "                . matches a newline too; white space and #comments in PATTERN are ignored\n"
    "  -e PATTERN    look for PATTERN. With several of them, the lines printed begin with the one\n"
    "                that matches, as in 'PATTERN:line'; of several that match, the one whose match\n"
    "                begins first\n"
    "  -o            print the matches only, each on a line of its own; first those of the first\n"
    "                PATTERN, then those of the next\n"
    "  -r TEMPLATE   print the lines with the first match replaced. In TEMPLATE $& stands for the\n"
    "                match and $1 to $9 for its groups. Empty lines stay empty\n"
    "  -g            with -r: replace every match\n"
    "  -c            print the number of matching lines only\n"
    "  -n            print line numbers\n"
    "  --limit N     steps that the search of one line may take (default 10000000)\n"
    "  --color=WHEN  mark matches: always, never, or auto (the default), on a terminal; --color\n"
    "                is always\n"
    "  --help        print this help\n"
    "\n"
    "The exit status is 0 when a line matched, 1 when none did, 2 when there was trouble. A line on\n"
    "which the steps ran out is reported as trouble: nobody knows whether it matches.\n";

static int usageError(void) {
  fprintf(stderr, "%sTry --help.\n", kUsage);
  return 0;
}

static int parseLimit(const char* text, int32_t* limit) {
  char* end;
  errno = 0;
  const long long value = strtoll(text, &end, 10);
  if (errno != 0 || end == text || *end || value < 0 || value > INT32_MAX) {
    complain("--limit takes a number from 0 to 2147483647, not '%s'", text);
    return 0;
  }
  *limit = (int32_t)value;
  return 1;
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

static void addLetter(Options* options, int letter) {
  const size_t length = strlen(options->letters);
  if (strchr(options->letters, letter)) return;
  options->letters[length] = (char)letter;
  options->letters[length + 1] = 0;
}

// Everything before the operands. Leaves optind at the first of them.
static int parseSwitches(int argc, char** argv, Options* options) {
  enum { LIMIT = 256, COLOUR, HELP };
  static const struct option kLong[] = {{"limit", required_argument, NULL, LIMIT},
                                        {"color", optional_argument, NULL, COLOUR},
                                        {"help", no_argument, NULL, HELP},
                                        {0}};
  int letter;
  while ((letter = getopt_long(argc, argv, "imsxocngr:e:", kLong, NULL)) != -1) {
    int good = 1;
    switch (letter) {
      case 'i':
      case 'm':
      case 's':
      case 'x':
        addLetter(options, letter);
        break;
      case 'o':
        options->onlyMatches = 1;
        break;
      case 'c':
        options->countLines = 1;
        break;
      case 'n':
        options->lineNumbers = 1;
        break;
      case 'g':
        options->everyMatch = 1;
        break;
      case 'r':
        options->template = optarg;
        break;
      case 'e':
        options->patterns[options->numPatterns++] = optarg;
        break;
      case LIMIT:
        good = parseLimit(optarg, &options->limit);
        break;
      case COLOUR:
        good = parseColour(optarg, &options->colour);
        break;
      case HELP:
        printf("%s%s", kUsage, kHelp);
        exit(EXIT_FOUND);
      default:
        good = usageError();
    }
    if (!good) return 0;
  }
  return 1;
}

int parseOptions(int argc, char** argv, Options* options) {
  static char* standardInput[] = {"-"};
  *options = (Options){.limit = kDefaultLimit, .colour = isatty(STDOUT_FILENO)};
  options->patterns = reallocate(NULL, (size_t)argc, sizeof *options->patterns);
  if (!parseSwitches(argc, argv, options)) return 0;
  if (options->template && options->onlyMatches) {
    complain("-o and -r do not go together");
    return 0;
  }
  if (options->numPatterns == 0) {
    if (optind == argc) return usageError();
    options->patterns[options->numPatterns++] = argv[optind++];
  }
  options->numFiles = optind < argc ? argc - optind : 1;
  options->files = optind < argc ? argv + optind : standardInput;
  return 1;
}
