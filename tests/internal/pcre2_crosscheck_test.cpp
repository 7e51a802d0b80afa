// Searches with generated expressions, compared with PCRE2: the same start, the same end and the same groups.
//
// The two dialects share most of Perl's syntax and part ways in many corners, mostly on purpose. The
// generator writes only what means the same to both. It leaves out, by name:
//
//   syntax of one side     possessive and nested quantifiers, {,n}, named groups, recursion, branch reset,
//                          blocks, \K \R \h \N \g \k, \v (a byte here, a set there)
//   \s and vertical tab    it is no white space here; texts have none
//   POSIX classes          cntrl, graph, print, punct; negated ones of several ranges (all is accepted)
//   single-member classes  of U+0080 to U+00FF: one byte is compared
//   quantified assertions  an optional one holds here without being looked at
//   lazy code points,      properties and atomic groups: they report a match at once, at a first differing
//                          character or empty iteration
//   lazy bytes             behind a choice point (the length keeps bytes of a failed try), and before a byte
//                          that is optional (the next byte is looked at too early)
//   lazy shorthands        next to the same shorthand: the pair merges into one greedy repeat
//   repeated groups        whose body can be empty, or is one repeated character: their counts are pruned
//   captures               inside lookarounds and atomic groups: they outlive a failure
//   references             to a group from inside it, to one that may be empty, to groups from 10 on
//   what sees the end      ($ \Z \z, lookaheads, atomic groups) while a literal ends the expression: the text
//                          is cut off behind its last occurrence
//   top-level bars         together with a repeated byte: it brings the cut back, for the last branch only
//   option settings        but at the head of the expression or of a group: they leak into later attempts
//   extended syntax        blanks between an item and its quantifier, but behind a byte or a class
//   caseless matching      beyond ASCII (texts have one case of each letter), and of \p{Lu} and \p{Ll}
//   multi-byte characters  repeated as a literal, or in a lookbehind wider than one character
//   \X, \p{Cn}             sequences are simpler here; what is unassigned depends on the Unicode version
//   faults of PCRE2 10.42  \D \S \W in a class with properties or POSIX classes lose what is above U+00FF;
//                          groups with {0} are searched for anchors

#include <gtest/gtest.h>

#if defined(ULKCH_HAVE_PCRE2)

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/compiled.h"
#include "ulkch.h"

namespace {

class Dice {
 public:
  explicit Dice(uint32_t seed) : engine_(seed) {}
  int upTo(int most) { return static_cast<int>(engine_() % static_cast<uint32_t>(most + 1)); }
  bool oneIn(int n) { return upTo(n - 1) == 0; }
  template <class List>
  auto pick(const List& list) {
    return list[static_cast<size_t>(upTo(static_cast<int>(std::size(list)) - 1))];
  }

 private:
  std::mt19937 engine_;
};

using Strings = std::vector<std::string>;

// How an expression is compiled, and what its texts are made of: few characters, so that things match often.
struct Setting {
  bool utf8;
  bool mayIgnoreCase;
  std::string options;  // of "imsx"

  bool has(char option) const { return options.find(option) != std::string::npos; }

  // Without UTF-8 there is one byte that is no character.
  const Strings& alphabet() const {
    static const Strings kBytes = {"a", "b", "c", "A", "B", "1", "_", "-", " ", "\n", "\xE9"};
    static const Strings kCharacters = {"a",  "b", "A", "B", "1",  "_", " ",
                                        "\n", "é", "α", "я", "漢", "€", "𐐀"};
    return utf8 ? kCharacters : kBytes;
  }
};

Setting randomSetting(Dice& dice) {
  Setting setting = {dice.oneIn(2), dice.oneIn(2), ""};
  for (const char option : {'i', 'm', 's', 'x'}) {
    if (dice.oneIn(4) && (option != 'i' || setting.mayIgnoreCase)) setting.options += option;
  }
  return setting;
}

std::string randomText(Dice& dice, const Setting& setting) {
  std::string text;
  const Strings& alphabet = setting.alphabet();
  const bool plain = dice.oneIn(2);
  for (int i = dice.upTo(12); i > 0; --i)
    text += plain ? alphabet[static_cast<size_t>(dice.upTo(3))] : dice.pick(alphabet);
  return text;
}

// An item that takes exactly one character and has no quantifier is of one of these kinds.
enum class Single { kNo, kByte, kClass, kShorthand, kCodePoint };

// A piece of an expression, with what the rules above need to know of it.
struct Piece {
  std::string text;
  bool canBeEmpty = false;
  bool repeatable = false;
  int width =
      -1;  // characters, those of a greedy repeat counted once; -1 where it holds more than single items
  Single single = Single::kNo;
  char letter = 0;        // the shorthand that it ends with, repeated or not
  bool lazy = false;      // it ends with a lazy repeat,
  bool lazyByte = false;  // namely of a byte
};

Piece single(const std::string& text, Single kind, char letter = 0) {
  return {text, false, true, 1, kind, letter};
}

Piece assertion(const std::string& text) { return {text, true}; }

class Generator {
 public:
  Generator(Dice& dice, const Setting& setting) : dice_(dice), setting_(setting) {}

  std::string pattern() {
    const std::string text = alternatives().text;
    const bool cutCounts = seesTheCut_ || (hasTopLevelBar_ && repeatsByte_);
    return cutCounts ? "(?:" + text + ")" : text;
  }

 private:
  enum class Place { kGroupHead, kAlternative, kCondition };

  std::string pick(const Strings& list) { return dice_.pick(list); }

  Piece alternatives() {
    Piece all = sequence(Place::kGroupHead);
    for (int bars = dice_.oneIn(3) ? dice_.upTo(2) : 0; bars > 0; --bars) {
      const Piece branch = sequence(Place::kAlternative);
      all = {all.text + "|" + branch.text, all.canBeEmpty || branch.canBeEmpty};
      if (depth_ == 0) hasTopLevelBar_ = true;
    }
    return all;
  }

  Piece sequence(Place place) {
    Piece all = {"", true, false, 0};
    if (place == Place::kGroupHead && dice_.oneIn(12)) {
      append(all, assertion(pick({"(?m)", "(?s)", "(?s-m)", setting_.mayIgnoreCase ? "(?i)" : "(?-i)"})));
    }
    for (int i = dice_.upTo(3); i >= 0; --i) {
      const bool first = all.text.empty() && place != Place::kCondition;
      const Piece next = item(first);
      const bool wouldMerge = next.letter && next.letter == all.letter && (next.lazy || all.lazy);
      if (all.lazyByte || wouldMerge) append(all, literals());
      append(all, next);
    }
    return all;
  }

  void append(Piece& all, const Piece& next) {
    const bool alone = all.text.empty();
    const bool merges = next.letter && next.letter == all.letter;
    const std::string gap = setting_.has('x') && dice_.oneIn(3) ? pick({" ", "\n ", "# b|a(\n"}) : "";
    Piece sum = next;
    sum.text = all.text + gap + next.text;
    sum.canBeEmpty = all.canBeEmpty && next.canBeEmpty;
    sum.width = all.width < 0 || next.width < 0 ? -1 : all.width + (merges ? 0 : next.width);
    if (!alone) sum.single = Single::kNo;
    all = sum;
  }

  Piece item(bool first) {
    Piece piece = depth_ < 3 && dice_.oneIn(3) ? compound() : atom();
    if (piece.repeatable && dice_.upTo(9) < 4) quantify(piece, first);
    return piece;
  }

  void quantify(Piece& piece, bool first) {
    const bool byte = piece.single == Single::kByte;
    const bool atomic = piece.text.starts_with("(?>");
    const bool canBeLazy = piece.single != Single::kCodePoint && !atomic && (!byte || first);
    if (byte || piece.single == Single::kCodePoint) repeatsByte_ = true;
    if (setting_.has('x') && dice_.oneIn(4) && (byte || piece.single == Single::kClass)) piece.text += " ";

    const std::string quantifier = pick({"*", "+", "?", "{2}", "{0,2}", "{1,3}", "{2,}", "{1}", "{2,4}",
                                         piece.single == Single::kNo ? "{1,}" : "{0}"});
    piece.text += quantifier;
    if (quantifier == "*" || quantifier == "?" || quantifier.starts_with("{0")) piece.canBeEmpty = true;
    piece.lazy = canBeLazy && dice_.oneIn(3);
    piece.lazyByte = piece.lazy && byte;
    if (piece.lazy) piece.text += "?";
    if (piece.lazy || piece.single == Single::kNo) piece.width = -1;
    piece.single = Single::kNo;
    piece.repeatable = false;
  }

  // ---- without groups

  Piece atom() {
    const int kind = dice_.upTo(11);
    if (kind < 2) return literals();
    if (kind < 5) return oneLiteral();
    if (kind < 7) return shorthand();
    if (kind < 9) return charClass();
    if (kind == 9) return anchor();
    if (kind == 10) return setting_.utf8 ? property() : single("\\C", Single::kByte);
    return closedGroups_.empty() || dice_.oneIn(3) ? codePoint() : backReference();
  }

  std::string character() {
    const std::string text = dice_.pick(setting_.alphabet());
    if (text == "\n") return "\\n";
    return text == " " || text == "-" ? "\\" + text : text;
  }

  // More than one byte, so that a quantifier would take a part of it.
  Piece literals() {
    const std::string text = dice_.oneIn(8)
                                 ? pick({"\\Qa|b\\E", "\\Q(\\E1", "a\\Q\\Eb", "\\.\\*", "\\x61\\102"})
                                 : character() + character();
    return {text, false, false, 2};
  }

  Piece oneLiteral() {
    if (dice_.oneIn(5)) {
      return single(pick({"\\x61", "\\142", "\\Qb\\E", "\\x41", "\\012", "\\cJ", "\\x0a"}), Single::kByte);
    }
    const std::string text = character();
    if (static_cast<uint8_t>(text.back()) >= 0x80 && setting_.utf8) return {text, false, false, 2};
    return single(text, Single::kByte);
  }

  Piece shorthand() {
    const std::string text = pick({".", ".", "\\d", "\\D", "\\w", "\\W", "\\s", "\\S"});
    return single(text, Single::kShorthand, text.back());
  }

  Piece codePoint() {
    static const Strings kAscii = {"\\x{61}", "\\x{a}", "\\x{42}"};
    static const Strings kAny = {"\\x{61}",   "\\x{a}",    "\\x{42}",   "\\x{e9}",
                                 "\\x{6f22}", "\\x{20AC}", "\\x{10428}"};
    return single(dice_.pick(setting_.utf8 ? kAny : kAscii), Single::kCodePoint);
  }

  Piece property() {
    const std::string cased = setting_.mayIgnoreCase ? "{L}" : pick({"{Lu}", "{Ll}", "{L&}"});
    std::string text =
        pick({"\\p", "\\P"}) + pick({cased, "{L}", "{Lo}", "{Nd}", "{P}", "{S}", "{Sc}", "{Zs}", "{Cc}", "L",
                                     "N", "{Any}", "{Latin}", "{Greek}", "{Cyrillic}", "{Han}", "{Common}"});
    if (text.starts_with("\\p{") && dice_.oneIn(4)) text.insert(3, "^");
    return single(text, Single::kCodePoint);
  }

  Piece charClass() {
    const bool complements = dice_.oneIn(2);
    std::string text = dice_.oneIn(3) ? "[^" : "[";
    if (dice_.oneIn(8)) text += pick({"]", "-"});
    const Piece member = classMember(complements);
    // A class of one plain member is that member.
    if (text == "[" && dice_.oneIn(4)) return single("[" + member.text + "]", member.single, member.letter);
    text += member.text;
    for (int i = dice_.upTo(2); i >= 0; --i) text += classMember(complements).text;
    if (dice_.oneIn(8)) text += "-";
    return single(text + "]", Single::kClass);
  }

  // A class has members that are complements, or properties and POSIX classes, but not both.
  Piece classMember(bool complements) {
    switch (dice_.upTo(5)) {
      case 0: {
        const std::string text = complements ? pick({"\\D", "\\W", "\\S"}) : pick({"\\d", "\\w", "\\s"});
        return single(text, Single::kShorthand, text.back());
      }
      case 1:
        if (complements)
          return single(pick({"[:^digit:]", "[:^lower:]", "[:^upper:]", "[:^ascii:]"}), Single::kClass);
        if (dice_.oneIn(6)) return single("[:word:]", Single::kShorthand, 'w');
        return single(pick({"[:alpha:]", "[:digit:]", "[:upper:]", "[:alnum:]", "[:ascii:]", "[:blank:]",
                            "[:space:]", "[:xdigit:]"}),
                      Single::kClass);
      case 2:
        return single(pick({"a-b", "A-B", "b-z", "Z-b", "0-9", " -a", "\\x61-\\x63", "\\n-A", "\\x{61}"}),
                      Single::kClass);
      case 3:
        if (setting_.utf8 && !complements && dice_.oneIn(2)) {
          return single(pick({"\\p{L}", "\\P{Han}", "\\p{^Nd}", "\\p{Greek}"}), Single::kClass);
        }
        if (setting_.utf8) {
          return single(pick({"α-я", "a-ÿ", "\\x{100}-\\x{ffff}", "漢", "\\x{10400}"}), Single::kClass);
        }
        [[fallthrough]];
      default:
        return single(pick({"a", "b", "A", "1", "_", "\\-", " ", "\\n", "\\x42", "\\b", "\\.", "\\]"}),
                      Single::kByte);
    }
  }

  Piece anchor() {
    const std::string text = pick({"^", "^", "$", "$", "\\A", "\\Z", "\\z", "\\G", "\\b", "\\b", "\\B"});
    if (text == "$" || text == "\\Z" || text == "\\z") seesTheCut_ = true;
    return assertion(text);
  }

  // Never bare, lest the next item start with a digit.
  Piece backReference() {
    const std::string text = "\\" + std::to_string(dice_.pick(closedGroups_));
    if (dice_.oneIn(2)) return {"(?:" + text + ")", false, true};
    return {text + pick({"?", "*", "+", "{2}", "{1,2}", "+?", "*?", "{1}"}), true};
  }

  // ---- groups

  Piece compound() {
    ++depth_;
    const Piece piece = anyGroup();
    --depth_;
    return piece;
  }

  Piece anyGroup() {
    const int kind = dice_.upTo(9);
    if (kind < 3 && !noCaptures_) return capture();
    if (kind < 5) return plainGroup();
    if (kind == 5) return optionGroup();
    if (kind == 6) return atomicGroup();
    if (kind == 7) return lookahead();
    return kind == 8 ? lookbehind() : conditional();
  }

  static Piece group(const std::string& open, const Piece& body) {
    const bool oneRepeated = body.width == 1 && body.single == Single::kNo;
    return {open + body.text + ")", body.canBeEmpty, !body.canBeEmpty && !oneRepeated};
  }

  Piece capture() {
    const int number = ++numGroups_;
    const Piece body = alternatives();
    if (!body.canBeEmpty && number < 10) closedGroups_.push_back(number);
    return group("(", body);
  }

  // It may dissolve: then the body's items stand where the group stood.
  Piece plainGroup() {
    const Piece body = alternatives();
    Piece piece = group("(?:", body);
    piece.width = body.width;
    piece.single = body.single;
    piece.letter = body.letter;
    piece.lazy = body.lazy;
    return piece;
  }

  Piece optionGroup() {
    return group(pick({"(?s:", "(?m:", "(?s-m:", "(?-ims:", setting_.mayIgnoreCase ? "(?i:" : "(?-i:"}),
                 alternatives());
  }

  Piece withoutCaptures(const std::string& open) {
    const bool before = noCaptures_;
    noCaptures_ = true;
    const Piece body = alternatives();
    noCaptures_ = before;
    return group(open, body);
  }

  Piece atomicGroup() {
    seesTheCut_ = true;
    return withoutCaptures("(?>");
  }

  Piece lookahead() {
    seesTheCut_ = true;
    return assertion(withoutCaptures(pick({"(?=", "(?!"})).text);
  }

  Piece lookbehind() {
    const int width = setting_.utf8 ? 1 : 1 + dice_.upTo(2);
    std::string text = pick({"(?<=", "(?<!"}) + lookbehindBranch(width);
    if (dice_.oneIn(3)) text += "|" + lookbehindBranch(width);
    return assertion(text + ")");
  }

  std::string lookbehindBranch(int width) {
    std::string text = dice_.oneIn(5) ? pick({"\\b", "^", "\\B"}) : "";
    for (int left = width; left > 0; --left) {
      text += pick({"a", "b", "\\n", shorthand().text, charClass().text});
      if (left > 1 && dice_.oneIn(4)) {
        text += "{2}";
        repeatsByte_ = true;
        --left;
      }
    }
    return text;
  }

  Piece conditional() {
    const bool onGroup = !closedGroups_.empty() && !dice_.oneIn(3);
    const std::string condition =
        onGroup ? "(" + std::to_string(dice_.pick(closedGroups_)) + ")" : lookahead().text;
    const std::string yes = sequence(Place::kCondition).text;
    const std::string no = dice_.oneIn(3) ? "" : "|" + sequence(Place::kCondition).text;
    return assertion("(?" + condition + yes + no + ")");
  }

  Dice& dice_;
  const Setting& setting_;
  int depth_ = 0;
  int numGroups_ = 0;
  std::vector<int> closedGroups_;  // that a reference can name: complete, and never empty
  bool noCaptures_ = false;
  bool seesTheCut_ = false;
  bool hasTopLevelBar_ = false;
  bool repeatsByte_ = false;
};

// Both engines report a search as the bounds of every group, as in "2-5 - 3-3", or one of these.
const std::string kNoMatch = "no match";
const std::string kGaveUp = "gave up";

std::string bounds(int64_t start, int64_t end) {
  return start < 0 ? "- " : std::to_string(start) + "-" + std::to_string(end) + " ";
}

class Ours {
 public:
  Ours(const std::string& pattern, const Setting& setting)
      : state_(ulk_test::compiled(pattern, setting.options.c_str())) {
    ulksRegExpSetMatchLimit(1000000, state_.get());
    ulksRegExpSetFormat(setting.utf8 ? 1 : 0, state_.get());
  }

  std::string find(const std::string& text) {
    const auto* start = reinterpret_cast<const uint8_t*>(text.c_str());
    ulkRegExpFind found[64];
    int32_t count = 64;
    const ulkStatus status =
        ulksRegExpFind_8u(start, static_cast<int32_t>(text.size()), state_.get(), found, &count);
    if (status == ulkErrMatchLimit) return kGaveUp;
    if (status != ulkOk) return "status " + std::to_string(status);
    std::string result = count == 0 ? kNoMatch : "";
    for (int32_t i = 0; i < count; ++i) {
      const int64_t at = found[i].pFound ? found[i].pFound - start : -1;
      result += bounds(at, at + found[i].lenFound);
    }
    return result;
  }

 private:
  ulk_test::CompiledExpression state_;
};

class Pcre2 {
 public:
  Pcre2(const std::string& pattern, const Setting& setting) {
    // Its plain matcher: 10.42 takes some repeats of \P{...} for possessive that are not.
    uint32_t flags = PCRE2_NO_AUTO_POSSESS | PCRE2_NO_START_OPTIMIZE | PCRE2_NO_DOTSTAR_ANCHOR;
    if (setting.utf8) flags |= PCRE2_UTF;
    if (setting.has('i')) flags |= PCRE2_CASELESS;
    if (setting.has('m')) flags |= PCRE2_MULTILINE;
    if (setting.has('s')) flags |= PCRE2_DOTALL;
    if (setting.has('x')) flags |= PCRE2_EXTENDED;
    int error = 0;
    PCRE2_SIZE offset = 0;
    const auto* start = reinterpret_cast<PCRE2_SPTR>(pattern.data());
    pcre2_compile_context* context = pcre2_compile_context_create(nullptr);
    pcre2_set_newline(context, PCRE2_NEWLINE_LF);
    code_ = pcre2_compile(start, pattern.size(), flags, &error, &offset, context);
    pcre2_compile_context_free(context);
    if (!code_) error_ = "error " + std::to_string(error) + " at " + std::to_string(offset);
    if (code_) match_ = pcre2_match_data_create_from_pattern(code_, nullptr);
  }
  ~Pcre2() {
    pcre2_match_data_free(match_);
    pcre2_code_free(code_);
  }
  Pcre2(const Pcre2&) = delete;
  Pcre2& operator=(const Pcre2&) = delete;

  std::string find(const std::string& text) {
    if (!code_) return error_;
    const auto* start = reinterpret_cast<PCRE2_SPTR>(text.data());
    const int status = pcre2_match(code_, start, text.size(), 0, 0, match_, nullptr);
    if (status == PCRE2_ERROR_NOMATCH) return kNoMatch;
    if (status == PCRE2_ERROR_MATCHLIMIT || status == PCRE2_ERROR_DEPTHLIMIT) return kGaveUp;
    if (status < 0) return "error " + std::to_string(status);
    std::string result;
    const PCRE2_SIZE* vector = pcre2_get_ovector_pointer(match_);
    for (uint32_t i = 0; i < pcre2_get_ovector_count(match_); ++i) {
      const bool unset = vector[2 * i] == PCRE2_UNSET;
      result +=
          bounds(unset ? -1 : static_cast<int64_t>(vector[2 * i]), static_cast<int64_t>(vector[2 * i + 1]));
    }
    return result;
  }

 private:
  pcre2_code* code_ = nullptr;
  pcre2_match_data* match_ = nullptr;
  std::string error_;
};

int64_t fromEnvironment(const char* name, int64_t otherwise) {
  const char* value = std::getenv(name);
  return value ? std::atoll(value) : otherwise;
}

TEST(Pcre2Crosscheck, GeneratedExpressions) {
  const auto seed = static_cast<uint32_t>(fromEnvironment("ULKCH_TEST_SEED", 510));
  const int64_t numPatterns = fromEnvironment("ULKCH_CROSSCHECK_PATTERNS", 20000);
  std::printf("seed %u (ULKCH_TEST_SEED), %lld expressions (ULKCH_CROSSCHECK_PATTERNS)\n", seed,
              static_cast<long long>(numPatterns));
  Dice dice(seed);
  int64_t searches = 0, matches = 0, skipped = 0;
  for (int64_t i = 0; i < numPatterns; ++i) {
    const Setting setting = randomSetting(dice);
    const std::string pattern = Generator(dice, setting).pattern();
    Ours ours(pattern, setting);
    Pcre2 pcre2(pattern, setting);
    for (int t = 0; t < 8; ++t) {
      const std::string text = randomText(dice, setting);
      const std::string expected = pcre2.find(text);
      const std::string actual = ours.find(text);
      ++searches;
      if (expected == kGaveUp || actual == kGaveUp) {
        ++skipped;
        continue;
      }
      if (expected != kNoMatch) ++matches;
      ASSERT_EQ(actual, expected) << "pattern " << testing::PrintToString(pattern) << ", options \""
                                  << setting.options << (setting.utf8 ? "\", UTF-8" : "\", bytes")
                                  << ", text " << testing::PrintToString(text);
    }
  }
  std::printf("%lld searches, %lld matches, %lld not compared\n", static_cast<long long>(searches),
              static_cast<long long>(matches), static_cast<long long>(skipped));
  EXPECT_GT(matches, searches / 6);
  EXPECT_LT(skipped, searches / 1000);
}

}  // namespace

#else

TEST(Pcre2Crosscheck, GeneratedExpressions) {
  GTEST_SKIP() << (sizeof(void*) == 8 ? "libpcre2-dev was not installed when the build was configured"
                                      : "compared in the 64-bit build only");
}

#endif
