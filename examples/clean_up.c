// clean_up [-f DELIMITER] [-t DELIMITER] [FILE]: cleans a table of text, one row a line, its fields separated
// by a character (";" in, "," out unless said otherwise).
//
// White space and quotation marks around a field go, tabs inside it become spaces, and so does what would be
// taken for a delimiter in the output. Each line is split, every field trimmed, and the fields joined again.
#include <stdio.h>
#include <string.h>
#include <ulkch.h>

enum { kLineBytes = 4096, kFields = 64, kFieldBytes = 512 };

typedef struct Options {
  uint8_t from;
  uint8_t to;
  const char* file;  // null for standard input
} Options;

// The fields of one line. A list is an array of pointers beside an array of lengths.
typedef struct Fields {
  uint8_t texts[kFields][kFieldBytes];
  uint8_t* pointers[kFields];
  int32_t lengths[kFields];
  int32_t count;
} Fields;

static const char* describe(ulkStatus status) {
  switch (status) {
#define ULK_STATUS_CASE(name, value, meaning) \
  case name:                                  \
    return meaning;
    ULK_STATUS_LIST(ULK_STATUS_CASE)
#undef ULK_STATUS_CASE
  }
  return "unknown status";
}

// A warning tells that something of the line would be lost: that is as bad as an error here.
static ulkStatus split(const uint8_t* line, int32_t length, uint8_t delimiter, Fields* fields) {
  fields->count = kFields;
  for (int32_t i = 0; i < kFields; ++i) {
    fields->pointers[i] = fields->texts[i];
    fields->lengths[i] = kFieldBytes;
  }
  ulkStatus status =
      ulksSplitC_8u_D2L(line, length, delimiter, fields->pointers, fields->lengths, &fields->count);
  if (status != ulkOk) return status;
  // After a delimiter that ends the line there is no part, but in a table there is a field.
  if (length == 0 || line[length - 1] == delimiter) {
    if (fields->count == kFields) return ulkWrnSlotsExhausted;
    fields->lengths[fields->count++] = 0;
  }
  return ulkOk;
}

static ulkStatus trimAll(const Fields* fields, Fields* trimmed) {
  static const uint8_t unwanted[] = {' ', '\t', '\r', '"', '\''};
  trimmed->count = fields->count;
  for (int32_t i = 0; i < fields->count; ++i) {
    trimmed->pointers[i] = trimmed->texts[i];
    ulkStatus status = ulksTrimCAny_8u(fields->texts[i], fields->lengths[i], unwanted,
                                       (int32_t)sizeof unwanted, trimmed->texts[i], &trimmed->lengths[i]);
    if (status != ulkOk) return status;
  }
  return ulkOk;
}

static ulkStatus replaceAll(Fields* fields, uint8_t oldUnit, uint8_t newUnit) {
  for (int32_t i = 0; i < fields->count; ++i) {
    ulkStatus status =
        ulksReplaceC_8u(fields->texts[i], fields->texts[i], fields->lengths[i], oldUnit, newUnit);
    if (status != ulkOk) return status;
  }
  return ulkOk;
}

// Cleans a line of `length` bytes, in place: it never becomes longer, because fields only shrink.
static ulkStatus cleanLine(uint8_t* line, int32_t* length, const Options* options) {
  static Fields fields, trimmed;
  ulkStatus status = split(line, *length, options->from, &fields);
  if (status == ulkOk) status = replaceAll(&fields, '\t', ' ');
  if (status == ulkOk) status = replaceAll(&fields, options->to, ' ');
  if (status == ulkOk) status = trimAll(&fields, &trimmed);
  if (status != ulkOk) return status;
  // A list of pointers to constant units is another type in C, though not another thing.
  const uint8_t* const* sources = (const uint8_t* const*)trimmed.pointers;
  status = ulksConcatC_8u_D2L(sources, trimmed.lengths, trimmed.count, options->to, line);
  *length = trimmed.count - 1;
  for (int32_t i = 0; i < trimmed.count; ++i) *length += trimmed.lengths[i];
  return status;
}

static int cleanFile(FILE* input, const Options* options) {
  char line[kLineBytes];
  for (long number = 1; fgets(line, sizeof line, input); ++number) {
    size_t bytes = strcspn(line, "\n");
    if (line[bytes] != '\n' && !feof(input)) {
      fprintf(stderr, "clean_up: line %ld: too long, or not text\n", number);
      return 1;
    }
    int32_t length = (int32_t)bytes;
    ulkStatus status = cleanLine((uint8_t*)line, &length, options);
    if (status != ulkOk) {
      fprintf(stderr, "clean_up: line %ld: %s\n", number, describe(status));
      return 1;
    }
    fwrite(line, 1, (size_t)length, stdout);
    putchar('\n');
  }
  return ferror(input) != 0;
}

static int readOptions(int count, char** arguments, Options* options) {
  int at = 1;
  for (; at + 1 < count && arguments[at][0] == '-'; at += 2) {
    const char* value = arguments[at + 1];
    if (strlen(value) != 1) return 0;
    if (strcmp(arguments[at], "-f") == 0) {
      options->from = (uint8_t)value[0];
    } else if (strcmp(arguments[at], "-t") == 0) {
      options->to = (uint8_t)value[0];
    } else {
      return 0;
    }
  }
  if (at < count) options->file = arguments[at++];
  return at == count && (!options->file || options->file[0] != '-');
}

int main(int argc, char** argv) {
  Options options = {';', ',', NULL};
  if (!readOptions(argc, argv, &options)) {
    fputs("usage: clean_up [-f DELIMITER] [-t DELIMITER] [FILE]\n", stderr);
    return 2;
  }
  FILE* input = options.file ? fopen(options.file, "r") : stdin;
  if (!input) {
    perror(options.file);
    return 1;
  }
  int failed = cleanFile(input, &options);
  if (input != stdin) fclose(input);
  if (fflush(stdout) != 0) failed = 1;
  return failed;
}
