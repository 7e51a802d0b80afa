#include "required.h"

#include <string.h>

typedef struct Scan {
  const char* at;
  int depth;    // of groups; what stands in one may be optional
  char* run;    // the bytes that must follow each other
  size_t size;  // of the run
  char* best;
  size_t bestSize;
  int isWhole;
} Scan;

static void endRun(Scan* scan) {
  // Of equals the last: a search for the expression finds the first by itself.
  if (scan->size > 0 && scan->size >= scan->bestSize) {
    memcpy(scan->best, scan->run, scan->size);
    scan->bestSize = scan->size;
  }
  scan->size = 0;
}

static void addByte(Scan* scan, char byte) {
  if (scan->depth == 0) scan->run[scan->size++] = byte;
}

const char* skipClass(const char* at) {
  ++at;
  if (*at == '^') ++at;
  if (*at == ']') ++at;
  while (*at && *at != ']') {
    if (*at == '\\') {
      if (at[1] == '\0' || strchr("QE", at[1])) return NULL;
      at += 2;
    } else if (*at == '[' && at[1] && strchr(":.=", at[1])) {
      const char end[] = {at[1], ']', '\0'};
      at = strstr(at + 2, end);
      if (!at) return NULL;
      at += 2;
    } else {
      ++at;
    }
  }
  return *at ? at + 1 : NULL;
}

static int takeEscape(Scan* scan) {
  const char letter = scan->at[1];
  const int isDigit = letter >= '0' && letter <= '9';
  const int isLetter = (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
  if (letter == '\0' || (isLetter && !strchr("wWdDsSbBtfrvaeAzZG", letter))) return 0;
  if (letter == '0' || (isDigit && scan->at[2] >= '0' && scan->at[2] <= '9')) return 0;
  scan->at += 2;
  if (isLetter || isDigit) {
    scan->isWhole = 0;
    endRun(scan);
  } else {
    addByte(scan, letter);
  }
  return 1;
}

const char* skipQuantifier(const char* at, const char* start) {
  const char* const quantifier = at;
  if (*at == '{') {
    at = strchr(at, '}');
    if (!at) return NULL;
  }
  ++at;
  if (*at != '?') return at;
  // Of a lazy repeat, only that of a "." fails without further ado.
  const int isDot =
      quantifier > start && quantifier[-1] == '.' && (quantifier - 1 == start || quantifier[-2] != '\\');
  return isDot ? at + 1 : NULL;
}

static int takeQuantifier(Scan* scan, const char* start) {
  scan->isWhole = 0;
  if (*scan->at != '+' && scan->size > 0) --scan->size;
  endRun(scan);
  scan->at = skipQuantifier(scan->at, start);
  return scan->at != NULL;
}

static int takeGroup(Scan* scan) {
  scan->isWhole = 0;
  endRun(scan);
  if (*scan->at == ')') {
    --scan->depth;
  } else {
    ++scan->depth;
    if (scan->at[1] == '?') {
      if (!scan->at[2] || !strchr(":=!<", scan->at[2])) return 0;
      scan->at += 2;
    }
  }
  ++scan->at;
  return 1;
}

size_t findRequired(const char* pattern, char* string, int* isWhole) {
  char run[256];
  Scan scan = {.at = pattern, .run = run, .best = string, .isWhole = 1};
  while (*scan.at) {
    int isSure = 1;
    if (scan.size == sizeof run) return 0;
    switch (*scan.at) {
      case '\\':
        isSure = takeEscape(&scan);
        break;
      case '[':
        scan.isWhole = 0;
        endRun(&scan);
        scan.at = skipClass(scan.at);
        isSure = scan.at != NULL;
        break;
      case '(':
      case ')':
        isSure = takeGroup(&scan);
        break;
      case '*':
      case '+':
      case '?':
      case '{':
        isSure = takeQuantifier(&scan, pattern);
        break;
      case '|':
        if (scan.depth == 0) return 0;
        ++scan.at;
        break;
      case '^':
      case '$':
      case '.':
        scan.isWhole = 0;
        endRun(&scan);
        ++scan.at;
        break;
      default:
        addByte(&scan, *scan.at++);
    }
    if (!isSure) return 0;
  }
  endRun(&scan);
  *isWhole = scan.isWhole;
  return scan.bestSize;
}
