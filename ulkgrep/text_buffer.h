// Whole lines of a file, many at a time, whatever bytes are in them and however long they are.
#ifndef ULKGREP_TEXT_BUFFER_H
#define ULKGREP_TEXT_BUFFER_H

#include <stddef.h>
#include <stdint.h>

typedef struct TextBuffer {
  int file;
  uint8_t* bytes;
  size_t capacity;
  size_t end;       // behind the last byte read
  size_t linesEnd;  // behind the last whole line; the last line of a file may lack its newline
  uint64_t base;    // what stands at bytes[0] in the file
} TextBuffer;

typedef enum ReadResult { READ_LINES, READ_END, READ_ERROR } ReadResult;

// Drops what stands before `keep` and reads on, until at least one line stands behind linesEnd as it was. A
// byte that is no part of a UTF-8 sequence stands behind the last line. After READ_ERROR errno tells why. A
// buffer starts as { .file = descriptor }.
ReadResult readLines(TextBuffer* buffer, size_t keep);

void freeBuffer(TextBuffer* buffer);

// Where the line that begins at `start` ends: at its newline or at linesEnd.
size_t lineEnd(const TextBuffer* buffer, size_t start);

// Where the line before the one at `start` begins; `start` itself, which is above 0, is a beginning.
size_t lineBefore(const TextBuffer* buffer, size_t start);

uint64_t countNewlines(const uint8_t* start, const uint8_t* end);

#endif
