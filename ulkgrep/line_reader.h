// Whole lines of any length from a file descriptor, whatever bytes are in them.
#ifndef ULKGREP_LINE_READER_H
#define ULKGREP_LINE_READER_H

#include <stddef.h>
#include <stdint.h>

typedef struct LineReader {
  int file;
  uint8_t* buffer;
  size_t capacity;
  size_t next;  // where the next line begins in the buffer
  size_t end;   // behind the last byte read
} LineReader;

typedef enum ReadResult { READ_LINE, READ_END, READ_ERROR } ReadResult;

// A reader starts as { .file = descriptor }. The line is valid until the next call, without its newline; a
// NUL stands behind it in its place. After READ_ERROR errno tells why.
ReadResult readLine(LineReader* reader, const uint8_t** line, size_t* length);

void freeLineReader(LineReader* reader);

#endif
