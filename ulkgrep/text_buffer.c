// When no whole line is left, what is kept moves to the front and more is read behind it; the buffer grows
// when that alone fills it. Plain read() rather than fread() hands on lines as soon as a pipe delivers them.
#include "text_buffer.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "memory.h"

enum { kFirstCapacity = 1 << 17 };

static void makeRoom(TextBuffer* buffer, size_t keep) {
  buffer->end -= keep;
  buffer->linesEnd -= keep;
  buffer->base += keep;
  if (keep > 0 && buffer->end > 0) memmove(buffer->bytes, buffer->bytes + keep, buffer->end);
  if (buffer->capacity - buffer->end >= kFirstCapacity / 2) return;
  buffer->capacity = buffer->capacity ? buffer->capacity : kFirstCapacity;
  buffer->bytes = reallocate(buffer->bytes, buffer->capacity, 2);
  buffer->capacity *= 2;
}

static const uint8_t* lastNewline(const uint8_t* start, const uint8_t* end) {
  while (end > start && end[-1] != '\n') --end;
  return end > start ? end : NULL;  // behind it
}

ReadResult readLines(TextBuffer* buffer, size_t keep) {
  for (;; keep = 0) {
    makeRoom(buffer, keep);
    size_t room = buffer->capacity - buffer->end - 1;
    if (room > 1 << 30) room = 1 << 30;
    const int count = (int)read(buffer->file, buffer->bytes + buffer->end, (unsigned)room);
    if (count < 0) return READ_ERROR;
    uint8_t* const added = buffer->bytes + buffer->end;
    buffer->end += (size_t)count;
    buffer->bytes[buffer->end] = 0;
    const uint8_t* newline = lastNewline(added, added + count);
    if (newline || count == 0) {
      const size_t before = buffer->linesEnd;
      buffer->linesEnd = newline ? (size_t)(newline - buffer->bytes) : buffer->end;
      return buffer->linesEnd > before ? READ_LINES : READ_END;
    }
  }
}

void freeBuffer(TextBuffer* buffer) { free(buffer->bytes); }

size_t lineEnd(const TextBuffer* buffer, size_t start) {
  const uint8_t* newline = memchr(buffer->bytes + start, '\n', buffer->linesEnd - start);
  return newline ? (size_t)(newline - buffer->bytes) : buffer->linesEnd;
}

size_t lineBefore(const TextBuffer* buffer, size_t start) {
  --start;
  while (start > 0 && buffer->bytes[start - 1] != '\n') --start;
  return start;
}

uint64_t countNewlines(const uint8_t* start, const uint8_t* end) {
  uint64_t count = 0;
  while (start < end) {
    // Short sums, which the compiler keeps in the bytes of a vector.
    const uint8_t* const stop = end - start > 255 ? start + 255 : end;
    uint8_t sum = 0;
    for (; start < stop; ++start) sum = (uint8_t)(sum + (*start == '\n'));
    count += sum;
  }
  return count;
}
