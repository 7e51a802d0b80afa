// The expressions that the rows of regexp_bench.cpp search for, and the texts that they are searched in.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace bench {

// Logs are made by us. The others are found: prose is a dictionary of slang with a few signs outside ASCII,
// source the headers of a kernel, the manual Russian with markup, the changelog that of a program in C.
enum class Text { kLog, kProse, kSource, kManual, kChangelog };

// Contestants that a row goes without: what they cannot express, and where they rightly find something else.
enum : unsigned {
  kRe2 = 1,    // has neither lookaround nor references to groups nor atomic groups
  kBoost = 2,  // reads bytes, no characters
};

struct Expression {
  const char* name;
  Text text;
  const char* pattern;
  unsigned without = 0;
};

extern const std::vector<Expression> kExpressions;

// At most `bytes` of a text, in whole characters; empty where the texts have not been fetched.
std::shared_ptr<const std::string> textOf(Text kind, size_t bytes);

// The first 500 lines that are not empty, cut to 80 bytes and less.
std::vector<std::string> shortLines(const std::string& text);

}  // namespace bench
