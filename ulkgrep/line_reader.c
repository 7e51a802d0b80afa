// One buffer holds the line at hand and whatever was read behind it. When no newline is left in it, the
// unfinished line moves to the front and more is read behind it; the buffer grows when the line alone fills
// it. Plain read() rather than fread() hands on a line as soon as a pipe delivers it.
#include "line_reader.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "memory.h"

enum { kFirstCapacity = 1 << 16 };

// Makes room for at least one byte to read and one NUL behind it.
static void makeRoom(LineReader* reader) {
  if (reader->next > 0) {
    reader->end -= reader->next;
    memmove(reader->buffer, reader->buffer + reader->next, reader->end);
    reader->next = 0;
  }
  if (reader->capacity - reader->end >= 2) return;
  reader->capacity = reader->capacity ? reader->capacity : kFirstCapacity;
  reader->buffer = reallocate(reader->buffer, reader->capacity, 2);
  reader->capacity *= 2;
}

static ReadResult fill(LineReader* reader) {
  makeRoom(reader);
  size_t room = reader->capacity - reader->end - 1;
  if (room > (1 << 30)) room = 1 << 30;
  int count = (int)read(reader->file, reader->buffer + reader->end, (unsigned)room);
  if (count < 0) return READ_ERROR;
  reader->end += (size_t)count;
  return count > 0 ? READ_LINE : READ_END;
}

static uint8_t* findNewline(const LineReader* reader, size_t from) {
  return from < reader->end ? memchr(reader->buffer + from, '\n', reader->end - from) : NULL;
}

ReadResult readLine(LineReader* reader, const uint8_t** line, size_t* length) {
  uint8_t* newline = findNewline(reader, reader->next);
  while (!newline) {
    size_t searched = reader->end - reader->next;
    ReadResult result = fill(reader);
    if (result == READ_ERROR || (result == READ_END && searched == 0)) return result;
    newline = result == READ_LINE ? findNewline(reader, searched) : reader->buffer + reader->end;
  }
  *newline = 0;
  *line = reader->buffer + reader->next;
  *length = (size_t)(newline - *line);
  reader->next += *length + 1;
  if (reader->next > reader->end) reader->next = reader->end;  // the last line had no newline
  return READ_LINE;
}

void freeLineReader(LineReader* reader) { free(reader->buffer); }
