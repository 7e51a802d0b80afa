#include "pattern_list.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "memory.h"
#include "messages.h"
#include "platform.h"
#include "text_buffer.h"

static void addPattern(PatternList* list, const char* bytes, size_t length) {
  char* const pattern = reallocate(NULL, length + 1, 1);
  memcpy(pattern, bytes, length);
  pattern[length] = '\0';
  if ((list->count & (list->count + 1)) == 0)
    list->items = reallocate(list->items, 2 * (list->count + 1), sizeof *list->items);
  list->items[list->count++] = pattern;
}

void addPatterns(PatternList* list, const char* text) {
  for (;; ++text) {
    const size_t length = strcspn(text, "\n");
    addPattern(list, text, length);
    text += length;
    if (*text == '\0') return;
  }
}

// Adds the lines at hand. Returns 0 when there is a zero byte in them, which ends a pattern.
static int addLines(PatternList* list, const TextBuffer* buffer, int crlf) {
  size_t start = 0;
  if (memchr(buffer->bytes, 0, buffer->linesEnd)) return 0;
  while (start < buffer->linesEnd) {
    const size_t end = lineEnd(buffer, start);
    const int hasReturn = crlf && end > start && buffer->bytes[end - 1] == '\r';
    addPattern(list, (const char*)buffer->bytes + start, end - start - (size_t)hasReturn);
    start = end + 1;
  }
  return 1;
}

int addPatternsOfFile(PatternList* list, const char* name, int crlf) {
  const int isStandardInput = strcmp(name, "-") == 0;
  TextBuffer buffer = {.file = isStandardInput ? STDIN_FILENO : openFile(name)};
  const char* fault = buffer.file < 0 ? strerror(errno) : NULL;
  while (!fault) {
    const ReadResult result = readLines(&buffer, buffer.linesEnd);
    if (result == READ_END) break;
    if (result == READ_ERROR) {
      fault = strerror(errno);
    } else if (!addLines(list, &buffer, crlf)) {
      fault = "a pattern has a zero byte";
    }
  }
  if (fault) complain("%s: %s", name, fault);
  if (buffer.file >= 0 && !isStandardInput) close(buffer.file);
  freeBuffer(&buffer);
  return !fault;
}

void freePatternList(PatternList* list) {
  for (size_t i = 0; i < list->count; ++i) free(list->items[i]);
  free(list->items);
}
