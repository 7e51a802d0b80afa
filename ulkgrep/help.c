#include "help.h"

#include <stdio.h>
#include <ulkch.h>

const char usageText[] =
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

void printHelp(void) { printf("%s%s", usageText, kHelp); }

void printVersion(void) {
  const ulkLibraryVersion* version = ulkchGetLibVersion();
  printf("ulkgrep of ulkch %d.%d\n", (int)version->major, (int)version->minor);
}
