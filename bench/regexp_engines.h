// The engines of expressions that regexp_bench.cpp measures, each behind the same few functions.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace bench {

// What a search has found, in one number: how often, where and how much.
struct Answer {
  uint32_t sum = 0;
  void add(size_t at, size_t length) { sum = sum * 31 + static_cast<uint32_t>(at * 7 + length); }
};

// One expression, compiled by one engine. Positions are those of group 1 where there is one.
class Engine {
 public:
  Engine() = default;
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;
  virtual ~Engine() = default;
  virtual Answer all(const std::string& text) = 0;
  virtual void first(const std::string& text, Answer& answer) = 0;
};

struct Maker {
  const char* name;
  unsigned bit;  // of Expression::without; 0 for those that take part in every row
  std::unique_ptr<Engine> (*make)(const std::string& pattern);
  std::function<void()> (*compiler)(
      const std::string& pattern);  // compiles the pattern each time it is called
};

extern const std::vector<Maker> kMakers;  // ours first

// The one whose answers are those expected: PCRE2 where it takes part.
const Maker& judge();

}  // namespace bench
