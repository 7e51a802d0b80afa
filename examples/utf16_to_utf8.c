// utf16_to_utf8 [-b | -l] [FILE]: writes a UTF-16 text as UTF-8. A byte order mark at its start tells the
// order of its bytes and is left out; without one the text is big-endian with -b, else little-endian.
//
// The text goes through two buffers of fixed size, however long it is. What a read cuts, a unit or a
// surrogate pair, waits for the next read: the halves of a pair would be taken for two characters. A
// destination that is full is no error: the next call goes on where the last one ended.
#include <stdio.h>
#include <string.h>
#include <ulkch.h>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

enum { kSourceUnits = 2048, kTargetBytes = 4096 };

typedef struct Text {
  uint16_t units[kSourceUnits];
  size_t bytes;  // in `units`
  int32_t bigEndian;
} Text;

static int isHighSurrogate(const Text* text, size_t unit) {
  const uint8_t* bytes = (const uint8_t*)&text->units[unit];
  return ((text->bigEndian ? bytes[0] : bytes[1]) & 0xFC) == 0xD8;
}

// Fills the buffer behind what is left in it. False at the end of the input.
static int fill(Text* text, FILE* input) {
  size_t count = fread((uint8_t*)text->units + text->bytes, 1, sizeof text->units - text->bytes, input);
  text->bytes += count;
  return count > 0;
}

static void dropFirst(Text* text, size_t bytes) {
  text->bytes -= bytes;
  memmove(text->units, (uint8_t*)text->units + bytes, text->bytes);
}

static void takeByteOrderMark(Text* text) {
  const uint8_t* bytes = (const uint8_t*)text->units;
  if (text->bytes < 2) return;
  if (bytes[0] == 0xFE && bytes[1] == 0xFF) {
    text->bigEndian = 1;
  } else if (bytes[0] == 0xFF && bytes[1] == 0xFE) {
    text->bigEndian = 0;
  } else {
    return;
  }
  dropFirst(text, 2);
}

// Converts the first units of the text. False when the output cannot be written.
static int convert(Text* text, size_t units, FILE* output) {
  static uint8_t target[kTargetBytes];
  size_t done = 0;
  while (done < units) {
    int32_t consumed = (int32_t)(units - done);
    int32_t written = kTargetBytes;
    // Its only error is a null pointer.
    ulksConvertUTF_16u8u(text->units + done, &consumed, target, &written, text->bigEndian);
    if (fwrite(target, 1, (size_t)written, output) != (size_t)written) return 0;
    done += (size_t)consumed;
  }
  dropFirst(text, 2 * units);
  return 1;
}

// Returns what is wrong, null if nothing.
static const char* convertAll(Text* text, FILE* input, FILE* output) {
  int more = 1;
  while (more && text->bytes < 2) more = fill(text, input);
  takeByteOrderMark(text);
  for (;;) {
    size_t units = text->bytes / 2;
    if (more && units > 0 && isHighSurrogate(text, units - 1)) --units;
    if (!convert(text, units, output)) return "cannot write";
    if (!more) break;
    more = fill(text, input);
  }
  if (ferror(input)) return "cannot read";
  if (fflush(output) != 0) return "cannot write";
  return text->bytes == 0 ? NULL : "the text ends within a unit";
}

int main(int argc, char** argv) {
  static Text text;
  int next = 1;
  if (next < argc && (strcmp(argv[next], "-b") == 0 || strcmp(argv[next], "-l") == 0)) {
    text.bigEndian = argv[next++][1] == 'b';
  }
  if (argc - next > 1 || (next < argc && argv[next][0] == '-')) {
    fprintf(stderr, "usage: utf16_to_utf8 [-b | -l] [FILE]\n");
    return 2;
  }
#if defined(_WIN32)
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
#endif
  FILE* input = next < argc ? fopen(argv[next], "rb") : stdin;
  if (!input) {
    fprintf(stderr, "utf16_to_utf8: cannot open %s\n", argv[next]);
    return 1;
  }
  const char* error = convertAll(&text, input, stdout);
  if (error) fprintf(stderr, "utf16_to_utf8: %s\n", error);
  if (input != stdin) fclose(input);
  return error ? 1 : 0;
}
