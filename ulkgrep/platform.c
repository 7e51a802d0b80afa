#include "platform.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "memory.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>

static wchar_t* toWide(const char* text) {
  const int count = MultiByteToWideChar(CP_UTF8, 0, text, -1, NULL, 0);
  wchar_t* wide = reallocate(NULL, (size_t)count + 1, sizeof *wide);
  MultiByteToWideChar(CP_UTF8, 0, text, -1, wide, count);
  return wide;
}

static char* toUtf8(const wchar_t* wide) {
  const int count = WideCharToMultiByte(CP_UTF8, 0, wide, -1, NULL, 0, NULL, NULL);
  char* text = reallocate(NULL, (size_t)count + 1, 1);
  WideCharToMultiByte(CP_UTF8, 0, wide, -1, text, count, NULL, NULL);
  return text;
}

typedef _WDIR Directory;

static Directory* openDirectory(const char* name) {
  wchar_t* wide = toWide(name);
  Directory* directory = _wopendir(wide);
  free(wide);
  return directory;
}

static char* nextName(Directory* directory) {
  const struct _wdirent* entry = _wreaddir(directory);
  return entry ? toUtf8(entry->d_name) : NULL;
}

static void closeDirectory(Directory* directory) { _wclosedir(directory); }

int openFile(const char* name) {
  wchar_t* wide = toWide(name);
  const int descriptor = _wopen(wide, O_RDONLY | O_BINARY);
  free(wide);
  return descriptor;
}

FileKind kindOf(const char* name, int follow) {
  wchar_t* wide = toWide(name);
  const DWORD attributes = GetFileAttributesW(wide);
  free(wide);
  if (attributes == INVALID_FILE_ATTRIBUTES) return KIND_OTHER;
  if (!follow && (attributes & FILE_ATTRIBUTE_REPARSE_POINT)) return KIND_LINK;
  return attributes & FILE_ATTRIBUTE_DIRECTORY ? KIND_DIRECTORY : KIND_FILE;
}

int isSameFile(const char* name, const char* other) {
  (void)name;
  (void)other;
  return 0;
}

void prepareStreams(void) {
  _setmode(STDIN_FILENO, O_BINARY);
  _setmode(STDOUT_FILENO, O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

int wmain(int argc, wchar_t** wide) {
  char** argv = reallocate(NULL, (size_t)argc + 1, sizeof *argv);
  for (int i = 0; i < argc; ++i) argv[i] = toUtf8(wide[i]);
  argv[argc] = NULL;
  const int status = runProgram(argc, argv);
  for (int i = 0; i < argc; ++i) free(argv[i]);
  free(argv);
  return status;
}
#else
typedef DIR Directory;

static Directory* openDirectory(const char* name) { return opendir(name); }

static char* nextName(Directory* directory) {
  const struct dirent* entry = readdir(directory);
  return entry ? strcpy(reallocate(NULL, strlen(entry->d_name) + 1, 1), entry->d_name) : NULL;
}

static void closeDirectory(Directory* directory) { closedir(directory); }

int openFile(const char* name) { return open(name, O_RDONLY); }

FileKind kindOf(const char* name, int follow) {
  struct stat status;
  if ((follow ? stat : lstat)(name, &status) != 0) return KIND_OTHER;
  return S_ISDIR(status.st_mode)   ? KIND_DIRECTORY
         : S_ISLNK(status.st_mode) ? KIND_LINK
         : S_ISREG(status.st_mode) ? KIND_FILE
                                   : KIND_OTHER;
}

int isSameFile(const char* name, const char* other) {
  struct stat one, two;
  return stat(name, &one) == 0 && stat(other, &two) == 0 && one.st_dev == two.st_dev &&
         one.st_ino == two.st_ino;
}

void prepareStreams(void) {}

int main(int argc, char** argv) { return runProgram(argc, argv); }
#endif

static int compareNames(const void* one, const void* other) {
  return strcmp(*(char* const*)one, *(char* const*)other);
}

char** namesIn(const char* name) {
  Directory* directory = openDirectory(name);
  if (!directory) return NULL;
  char** names = NULL;
  size_t count = 0;
  for (;;) {
    char* entry = nextName(directory);
    if (entry && (strcmp(entry, ".") == 0 || strcmp(entry, "..") == 0)) {
      free(entry);
      continue;
    }
    if ((count & (count + 1)) == 0) names = reallocate(names, 2 * (count + 1), sizeof *names);
    names[count] = entry;
    if (!entry) break;
    ++count;
  }
  closeDirectory(directory);
  qsort(names, count, sizeof *names, compareNames);
  return names;
}
