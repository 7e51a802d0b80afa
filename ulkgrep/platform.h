// What Windows has other functions for: names of files are UTF-8 here on every system.
#ifndef ULKGREP_PLATFORM_H
#define ULKGREP_PLATFORM_H

#include <stddef.h>

typedef enum FileKind { KIND_OTHER, KIND_FILE, KIND_DIRECTORY, KIND_LINK } FileKind;

// A descriptor of the file, for bytes as they are; below 0, with errno, when it cannot be opened.
int openFile(const char* name);

// With `follow`, what a symbolic link leads to counts. KIND_OTHER when the name leads nowhere.
FileKind kindOf(const char* name, int follow);

// Whether two names lead to the same file; on Windows, where no links are followed, always 0.
int isSameFile(const char* name, const char* other);

// The names in the directory of this name, but "." and "..", sorted; with NULL behind them, and to be freed,
// as their array. NULL, with errno, when the directory cannot be read.
char** namesIn(const char* name);

// To be called first: the three standard streams carry bytes as they are, and the console UTF-8.
void prepareStreams(void);

// The program itself; the arguments are UTF-8.
int runProgram(int argc, char** argv);

#endif
