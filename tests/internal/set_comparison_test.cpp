// Generated sets: every expression of a set is answered as a search of its own answers it, whatever its match
// limit, in the first search of the set and after others have been put into it.
//
// ULKCH_COMPARE_SETS and ULKCH_COMPARE_SEED set how many sets, and the seed of the first one; the next one's
// is one more.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "support/compiled.h"
#include "support/generated_cases.h"
#include "support/outcome.h"

namespace ulk_test {
namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr uint64_t kSets = 300;
#else
constexpr uint64_t kSets = 3000;
#endif

uint64_t setting(const char* name, uint64_t otherwise) {
  const char* given = std::getenv(name);
  return given ? std::strtoull(given, nullptr, 10) : otherwise;
}

// Parts of expressions: what stands before a word that is looked for, the word, and what comes behind it.
// Their texts are made of words and of what is between them.
const char* const kHeads[] = {
    "",        "",           "",         "\\b",        "^",       "(?i)",   ".*",        "\\w+",
    "[a-c]+",  "\\S*",       "\\d{1,3}", "(?:x|yy|b)", "(?:ab)?", "a?",     "[^b]*",     "\xC3\xA9",
    ".",       "(?<=a)",     "(?!b)",    "(?>a+|b)",   "^?",      "\\W",    "[^a]{1,2}", "a{2,5}",
    "(a|bc)+", "(?:a|x){2}", "(b)?",     "\\X",        "c*?",     "\\pL*?", "\\x{e9}+",  "(?=x)a|",
    "(a*)\\1", "^.*",        "(?i:B)",   "\\w*\\s+",   "[^\\n]*", "\\x80?", "\\x80",     "\\C"};
const char* const kWords[] = {"abca",
                              "bcab",
                              "foo1",
                              "cab",
                              "aabx",
                              "12:3",
                              "\xC3\xA9"
                              "a b",
                              "xyz-",
                              "ab",
                              "Abcab",
                              "b[ab]c\\d+",
                              "a\\sb",
                              "-\\d\\d-",
                              "x@y",
                              "[abc]{4}",
                              "zz\\wz",
                              "ab.cab",
                              "f\\Woo1",
                              "(?:ab|ca){2}",
                              "(?:\\d-){2}"};
const char* const kTails[] = {"",         "",           "",           "\\w*",       "$",         "\\b",
                              ".*z",      "(?=b)",      "c*?",        "|xyz",       "|\\d+:|yz", "[a-z ]*#",
                              "(?:b|c)x", "(a|b)*-",    "(?-i)B",     "(?>[ab]*)c", "(?!.*z)",   "\\z",
                              "b*?c",     "(?=.*x)y?",  "(\\w+) \\1", "[^x]*x",     "|b*c",      "|a*xyz",
                              "(?=.*x)c", "(?>c1|b)*c", "\\w*a*?\\d", "."};
const char* const kOptions[] = {"", "g", "m", "gm", "gi", "s", "gms"};
const char* const kBetween[] = {" ",    "\n",   "a",   "b",  "B", "x",  "1",   "-",        "\xC3\xA9",
                                "\x80", "\xC3", "abc", "yy", "z", "c#", " ab", "\xC3\x80", "1aa"};
const char* const kTextWords[] = {"abca",
                                  "bcab",
                                  "foo1",
                                  "cab",
                                  "aabx",
                                  "12:3",
                                  "\xC3\xA9"
                                  "a b",
                                  "xyz-",
                                  "bac12",
                                  "a\tb",
                                  "-12-",
                                  "x@y",
                                  "zzaz",
                                  "FOO1",
                                  "ABCA"};

struct Member {
  std::string source;  // for people
  CompiledExpression expression;
  int32_t capacity;
  int32_t limit;
  std::string text;  // one that it is made for
};

class GeneratedSet {
 public:
  explicit GeneratedSet(uint64_t seed) : choices_(seed) {
    const uint32_t numSlots = 4 + choices_.few(28);
    EXPECT_EQ(ulksRegExpMultiInitAlloc(&set_, numSlots), ulkOk);
    for (uint32_t i = 0; i < 2 * numSlots; ++i) addMember();
    slots_.assign(numSlots, nullptr);
    for (uint32_t i = 0; i < numSlots; ++i) {
      slots_[i] = &members_[i];
      ulksRegExpMultiAdd(slots_[i]->expression.get(), i + 1, set_);
    }
    makeText();
    for (Member& member : members_) member.limit = someLimit(member);
  }
  ~GeneratedSet() { ulksRegExpMultiFree(set_); }
  GeneratedSet(const GeneratedSet&) = delete;

  // Frees some slots, and puts the other expressions in place of some.
  void change() {
    for (size_t i = 0; i < slots_.size(); ++i) {
      Member* const other = &members_[slots_.size() + i];
      switch (choices_.below(4)) {
        case 0:
          ulksRegExpMultiDelete(static_cast<uint32_t>(i + 1), set_);
          slots_[i] = nullptr;
          break;
        case 1:
          ulksRegExpMultiModify(other->expression.get(), static_cast<uint32_t>(i + 1), set_);
          slots_[i] = other;
          break;
        default:
          break;
      }
    }
  }

  // What the first slot that differs says; nothing if none does.
  std::string difference() {
    std::vector<ulkRegExpMultiFind> results(slots_.size(), {77, 77, 77, 77, nullptr});
    std::vector<Outcome> outcomes(slots_.size());
    searchAll(results, outcomes, 0);
    for (size_t i = 0; i < slots_.size(); ++i) {
      const ulkRegExpMultiFind& result = results[i];
      if (!slots_[i]) {
        if (result.searched != 77 || result.status != 77) return "a free slot was searched";
        continue;
      }
      const Outcome alone = searchAlone(*slots_[i]);
      if (alone == outcomes[i] && result.searched == 1 && result.id == i + 1) continue;
      return slots_[i]->source + " limit=" + std::to_string(slots_[i]->limit) +
             " capacity=" + std::to_string(slots_[i]->capacity) + "\n  alone: " + asText(alone) +
             "\n  in the set: " + asText(outcomes[i]) + "\n  text:\n" + text_;
    }
    return "";
  }

  int numFound = 0;  // slots that found something

 private:
  std::string pattern() {
    return std::string(choices_.pick(kHeads)) + choices_.pick(kWords) + choices_.pick(kTails);
  }

  void addMember() {
    for (;;) {
      GeneratedExpression made = generateExpression(choices_);
      if (!choices_.oneIn(4)) made = {pattern(), choices_.pick(kOptions), {}};
      ulkRegExpState* state = nullptr;
      int32_t errorOffset = 0;
      if (ulksRegExpInitAlloc(made.pattern.c_str(), made.options.c_str(), &state, &errorOffset) != ulkOk)
        continue;
      const bool isOfParts = made.tree.parts.empty() && made.tree.samples.empty();
      GeneratedSearch search;
      search.text = choices_.pick(kTextWords);
      search.format = static_cast<int32_t>(choices_.below(2));
      search.capacity = 1 + static_cast<int32_t>(choices_.below(40));
      if (!isOfParts) search = generateSearch(choices_, made, false);
      ulksRegExpSetFormat(search.format, state);
      members_.push_back(
          {"/" + made.pattern + "/" + made.options + " format=" + std::to_string(search.format),
           CompiledExpression(state), search.capacity, 0, search.text});
      return;
    }
  }

  void makeText() {
    const uint32_t numParts = 1 + choices_.few(60);
    for (uint32_t i = 0; i < numParts; ++i) {
      text_ += choices_.oneIn(8) ? choices_.pick(members_).text : choices_.pick(kTextWords);
      if (choices_.oneIn(100)) text_.append(choices_.below(5000), choices_.pick(std::string("a 1\n\x80")));
      for (uint32_t more = choices_.few(6); more > 0; --more) text_ += choices_.pick(kBetween);
    }
    text_ += choices_.pick(kBetween);
  }

  // None, the usual one, any, and the least with which the expression is answered as without one, or one
  // below.
  int32_t someLimit(Member& member) {
    switch (choices_.below(6)) {
      case 0:
        return 1 << 20;
      case 1:
        return 10000;
      case 2:
        return static_cast<int32_t>(choices_.below(3000));
      default:
        break;
    }
    member.limit = 1 << 16;
    const Outcome wanted = searchAlone(member);
    int32_t least = 0;
    for (int32_t step = 1 << 15; step > 0; step /= 2) {
      member.limit = least + step - 1;
      if (searchAlone(member) != wanted) least += step;
    }
    return least - (choices_.oneIn(3) && least > 0 ? 1 : 0) + static_cast<int32_t>(choices_.few(40));
  }

  Outcome searchAlone(const Member& member) const {
    ulksRegExpSetMatchLimit(member.limit, member.expression.get());
    return outcomeOf(bytes(), member.capacity, [&](ulkRegExpFind* records, int32_t* count) {
      return ulksRegExpFind_8u(bytes(), static_cast<int32_t>(text_.size()), member.expression.get(), records,
                               count);
    });
  }

  // Searches the set when the records of all slots from `slot` on are there.
  ulkStatus searchAll(std::vector<ulkRegExpMultiFind>& results, std::vector<Outcome>& outcomes, size_t slot) {
    if (slot == slots_.size())
      return ulksRegExpMultiFind_8u(bytes(), static_cast<int32_t>(text_.size()), results.data(), set_);
    if (!slots_[slot]) return searchAll(results, outcomes, slot + 1);
    ulksRegExpSetMatchLimit(slots_[slot]->limit, slots_[slot]->expression.get());
    outcomes[slot] = outcomeOf(bytes(), slots_[slot]->capacity, [&](ulkRegExpFind* records, int32_t* count) {
      results[slot].pFind = records;
      results[slot].numFind = *count;
      searchAll(results, outcomes, slot + 1);
      *count = results[slot].numFind;
      numFound += *count > 0;
      return results[slot].status;
    });
    return ulkOk;
  }

  const uint8_t* bytes() const { return reinterpret_cast<const uint8_t*>(text_.c_str()); }

  RandomChoices choices_;
  ulkRegExpMultiState* set_ = nullptr;
  std::vector<Member> members_;
  std::vector<Member*> slots_;
  std::string text_;
};

TEST(SetComparisonTest, EveryExpressionIsAnsweredAsAlone) {
  const uint64_t seed = setting("ULKCH_COMPARE_SEED", 20260101);
  const uint64_t numSets = setting("ULKCH_COMPARE_SETS", kSets);
  int numFound = 0;
  for (uint64_t i = 0; i < numSets; ++i) {
    SCOPED_TRACE("seed " + std::to_string(seed + i));
    GeneratedSet set(seed + i);
    ASSERT_EQ(set.difference(), "");
    set.change();
    ASSERT_EQ(set.difference(), "");
    numFound += set.numFound;
  }
  EXPECT_GT(numFound, static_cast<int>(numSets));
}

}  // namespace
}  // namespace ulk_test
