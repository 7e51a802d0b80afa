// Reads the transcript files of tests/data: expressions, the texts to search and what must be found.
//
// A file is read by people first. A line that starts in the first column is a comment (#) or an expression
// with its first search, or its compile error; the indented lines below are its other searches:
//
//   /a(b)?c/i  "xABC" = 1+3 2+1     the pattern up to the last slash, byte for byte, then the options; record
//                                   0 is 3 bytes at position 1, record 1 one byte at 2
//     "ac"    = 0+2 -               "-" is a group that took no part
//     "b"     = none                no match
//   "a\n\<3:xy>b"                   a pattern in quotes is written with the escapes of a text
//     "a\nxyxyxyb" = 0+8 steps 1    the smallest match limit that gives this result is 1
//     limit=0 "a"  = limit 1        the match limit ran out and left the count at 1; records written follow
//   /(a/  error group 3             refused with this error at this offset; the names are those of the
//                                   status codes
//   /ab*/  = char:a char:b ...      compiled to this program, as support/dump.h writes it
//
// A slash before a blank ends the pattern, so a first search with one in its text stands in the line below.
//
// An expression without further lines must compile. Before its text a search may set limit=N, capacity=N
// (records, 64 unless given), format=0|1 and behind="..." (the bytes that can be read behind the text, a
// zero byte unless given). Without a format, a text of ASCII bytes is searched in both formats with the same
// result, any other in format 1.
//
// Escapes: \\ \" \n \r \t \0 \xHH, and \<N:...> for N times what stands up to the ">". Other bytes stand for
// themselves; the files are UTF-8.
//
// A page of docs/ (.md) is read too: its code spans that begin with a slash are expressions, each with its
// error or one search behind it, and every row of a table that begins with a code span has to hold one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ulk_test {

struct Search {
  int line = 0;
  std::string text;
  std::string behind = std::string(1, '\0');
  std::optional<int32_t> format;
  std::optional<int32_t> limit;
  int32_t capacity = 64;
  std::string expected;          // the outcome as written, one blank between words, without the steps
  std::optional<int32_t> steps;  // the smallest limit that gives the outcome
};

struct Expression {
  int line = 0;
  std::string pattern;
  std::string options;
  std::string error;  // "error NAME OFFSET" for a pattern that must be refused, else empty
  std::optional<std::string> program;
  std::vector<Search> searches;
};

struct ExpressionFile {
  std::vector<Expression> expressions;
  std::string problem;  // why the file could not be read, with the line; empty when it could
};

ExpressionFile readExpressions(const std::string& path);

}  // namespace ulk_test
