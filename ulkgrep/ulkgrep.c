// ulkgrep: prints the lines of files that match an expression, after the manner of grep.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <ulkch.h>
#include <unistd.h>

#include "memory.h"
#include "messages.h"
#include "output.h"
#include "platform.h"
#include "search.h"

// --- files

static void reportFile(Grep* grep, const char* name, const char* why) {
  if (!grep->options.silent) complain("%s: %s", name, why);
  grep->trouble = 1;
}

// Returns whether the file counts as found.
static int searchOpened(Grep* grep, const char* name, int descriptor) {
  const Options* options = &grep->options;
  const uint64_t lines = searchFile(grep, name, descriptor);
  if (options->report == REPORT_COUNT) printCount(options, name, lines);
  if (options->report == REPORT_MATCHING_FILE && lines > 0) puts(name);
  if (options->report == REPORT_OTHER_FILE && lines == 0) puts(name);
  return options->report == REPORT_OTHER_FILE ? lines == 0 : lines > 0;
}

static int searchNamed(Grep* grep, const char* name) {
  const int descriptor = openFile(name);
  if (descriptor < 0) {
    reportFile(grep, name, strerror(errno));
    return 0;
  }
  const int found = searchOpened(grep, name, descriptor);
  close(descriptor);
  return found;
}

// Whether a name is like the glob.
static int isLike(const char* name, const char* glob) {
  for (; *glob; ++glob, ++name) {
    if (*glob == '*') {
      for (; *name; ++name)
        if (isLike(name, glob + 1)) return 1;
      return isLike(name, glob + 1);
    }
    if (*name == '\0' || (*glob != '?' && *glob != *name)) return 0;
  }
  return *name == '\0';
}

static int isIncluded(const Options* options, const char* name) {
  for (size_t i = 0; i < options->numIncludes; ++i)
    if (isLike(name, options->includes[i])) return 1;
  return options->numIncludes == 0;
}

static int isDone(const Grep* grep, int found) { return found && grep->options.report == REPORT_NOTHING; }

// Without a directory's name only what a command line without files means: the current directory.
static int searchDirectory(Grep* grep, const char* directory, int isNamed) {
  char** const names = namesIn(directory);
  if (!names) {
    reportFile(grep, directory, strerror(errno));
    return 0;
  }
  int found = 0;
  for (char** name = names; *name; ++name) {
    const size_t length = strlen(directory);
    const char* const slash = length > 0 && directory[length - 1] == '/' ? "" : "/";
    char* path = reallocate(NULL, length + strlen(*name) + 2, 1);
    sprintf(path, "%s%s%s", isNamed ? directory : "", isNamed ? slash : "", *name);
    const FileKind kind = isDone(grep, found) ? KIND_OTHER : kindOf(path, 0);
    if (kind == KIND_DIRECTORY) {
      found |= searchDirectory(grep, path, 1);
    } else if (kind == KIND_FILE && isIncluded(&grep->options, *name)) {
      found |= searchNamed(grep, path);
    }
    free(path);
    free(*name);
  }
  free(names);
  return found;
}

static int searchOperand(Grep* grep, const char* name, int isNamed) {
  if (strcmp(name, "-") == 0) return searchOpened(grep, "(standard input)", STDIN_FILENO);
  if (kindOf(name, 1) != KIND_DIRECTORY) return searchNamed(grep, name);
  if (grep->options.recursive) return searchDirectory(grep, name, isNamed);
  reportFile(grep, name, "is a directory; -r searches the files in it");
  return 0;
}

// --- the whole program

static int prepareTemplate(Grep* grep) {
  const char* template = grep->options.template ? grep->options.template : "";
  const ulkStatus status = prepareReplacement(&grep->replacement, template);
  if (status != ulkOk) complain("the template '%s': %s", template, describe(status));
  return status == ulkOk;
}

static int run(Grep* grep, int argc, char** argv) {
  Options* options = &grep->options;
  if (!parseOptions(argc, argv, options) || !prepareTemplate(grep) ||
      !compilePatterns(&grep->patterns, options))
    return EXIT_TROUBLE;
  compileFilter(&grep->filter, options);
  int found = 0;
  for (int i = 0; i < options->numFiles && !isDone(grep, found); ++i)
    found |= searchOperand(grep, options->files[i], options->hasFiles);
  if (fflush(stdout) != 0 || ferror(stdout)) {
    complain("cannot write: %s", strerror(errno));
    grep->trouble = 1;
  }
  if (grep->trouble && !isDone(grep, found)) return EXIT_TROUBLE;
  return found ? EXIT_FOUND : EXIT_NONE;
}

static void freeGrep(Grep* grep) {
  freePatterns(&grep->patterns);
  freeFilter(&grep->filter);
  freeReplacement(&grep->replacement);
  free(grep->options.patterns);
  free(grep->options.includes);
}

int runProgram(int argc, char** argv) {
  prepareStreams();
  prepareOutput();
  Grep grep = {0};
  const int status = run(&grep, argc, argv);
  freeGrep(&grep);
  return status;
}
