// Expressions as people write them and as attackers do, and texts that they match, nearly match, or match
// only by giving back what they took first.
//
// All choices come from one source: a random generator, or the bytes that a fuzzer varies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace ulk_test {

class Choices {
 public:
  virtual ~Choices() = default;
  // A number below `n`. A source that has run dry answers 0, so 0 is always the choice that ends or is
  // simple.
  virtual uint32_t below(uint32_t n) = 0;

  bool oneIn(uint32_t n) { return below(n) == n - 1; }
  // Few most often.
  uint32_t few(uint32_t most) { return below(below(most) + 1); }
  template <class List>
  const auto& pick(const List& list) {
    return list[below(static_cast<uint32_t>(std::size(list)))];
  }
};

class RandomChoices : public Choices {
 public:
  explicit RandomChoices(uint64_t seed) : state_(seed) {}
  uint32_t below(uint32_t n) override;

 private:
  uint64_t state_;
};

class ByteChoices : public Choices {
 public:
  ByteChoices(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}
  uint32_t below(uint32_t n) override;
  bool dry() const { return next_ == end_; }

 private:
  const uint8_t* next_;
  const uint8_t* end_;
};

// A part of an expression that knows what it may match.
struct Piece {
  enum class Kind { kLeaf, kSequence, kAlternatives };
  Kind kind = Kind::kLeaf;
  std::string open;  // what begins a group with its option or condition; of a leaf all of it
  std::string close;
  std::string quantifier;
  uint32_t least = 1;
  uint32_t most = 1;
  int group = 0;      // the number of a capture group,
  int reference = 0;  // or of the one that is referred to
  bool lookaround = false;
  std::vector<Piece> parts;
  std::vector<std::string> samples;  // of a leaf

  std::string pattern() const;
};

struct GeneratedExpression {
  std::string pattern;
  std::string options;
  Piece tree;  // of the pattern before its last bytes were changed
};

GeneratedExpression generateExpression(Choices& choices);

// What earlier searches have left in the state: nothing, so many attempts in vain that candidates are looked
// for at once, that the text before had none, by a pair of bytes if there is one or by the automaton, or what
// a search of the same text leaves then.
enum class Earlier {
  kNothing,
  kInVain,
  kInVainWithoutPair,
  kNoCandidates,
  kNoCandidatesWithoutPair,
  kSameText
};

struct GeneratedSearch {
  std::string pattern;
  std::string options;
  std::string text;
  std::string behind;  // what stands behind the text, before a zero byte
  int32_t format = 1;
  int32_t capacity = 64;
  bool replace = false;  // the search of a replacement
  Earlier earlier = Earlier::kNothing;
  bool glances = true;     // the search is made only where a glance at the text does not decide
  int32_t limitShare = 0;  // one limit to try is this share of the steps needed, in 256ths
};

constexpr size_t kLongest = 16000;  // bytes of a text

GeneratedSearch generateSearch(Choices& choices, const GeneratedExpression& expression, bool isLong);

}  // namespace ulk_test
