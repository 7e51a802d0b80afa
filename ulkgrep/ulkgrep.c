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
  if (options->report == (lines > 0 ? REPORT_MATCHING_FILE : REPORT_OTHER_FILE)) printName(options, name);
  return lines > 0;
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

// Whether files of this name are searched: the last glob that fits counts.
static int isIncluded(const Options* options, const char* name) {
  int isFirst = 1, included = 1;
  for (const Glob* glob = options->globs; glob < options->globs + options->numGlobs; ++glob) {
    if (glob->kind == GLOB_EXCLUDE_DIRECTORY) continue;
    const int includes = glob->kind == GLOB_INCLUDE;
    if (isFirst) included = !includes;
    isFirst = 0;
    if (isLike(name, glob->pattern)) included = includes;
  }
  return included;
}

static int isExcludedDirectory(const Options* options, const char* name) {
  for (const Glob* glob = options->globs; glob < options->globs + options->numGlobs; ++glob)
    if (glob->kind == GLOB_EXCLUDE_DIRECTORY && isLike(name, glob->pattern)) return 1;
  return 0;
}

static int isDone(const Grep* grep, int found) { return found && grep->options.report == REPORT_NOTHING; }

// A directory that is being searched, and the one that it was found in.
typedef struct Directory {
  const char* path;
  const struct Directory* parent;
} Directory;

static int isSearchedAlready(const Directory* directory) {
  for (const Directory* at = directory->parent; at; at = at->parent)
    if (isSameFile(at->path, directory->path)) return 1;
  return 0;
}

// Without a directory's name only what a command line without files means: the current directory.
static int searchDirectory(Grep* grep, const char* directory, const Directory* parent, int isNamed) {
  const Directory here = {directory, parent};
  if (grep->options.followLinks && isSearchedAlready(&here)) {
    reportFile(grep, directory, "leads back to a directory that holds it");
    return 0;
  }
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
    const FileKind kind = isDone(grep, found) ? KIND_OTHER : kindOf(path, grep->options.followLinks);
    if (kind == KIND_DIRECTORY) {
      if (!isExcludedDirectory(&grep->options, *name)) found |= searchDirectory(grep, path, &here, 1);
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
  if (kindOf(name, 1) != KIND_DIRECTORY) {
    const char* const slash = strrchr(name, '/');
    return isIncluded(&grep->options, slash ? slash + 1 : name) && searchNamed(grep, name);
  }
  if (grep->options.recursive) return searchDirectory(grep, name, NULL, isNamed);
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
  prepareOutput(options);
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
  freePatternList(&grep->options.patterns);
  free(grep->options.globs);
}

int runProgram(int argc, char** argv) {
  prepareStreams();
  Grep grep = {0};
  const int status = run(&grep, argc, argv);
  freeGrep(&grep);
  return status;
}
