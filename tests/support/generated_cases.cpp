#include "support/generated_cases.h"

#include <algorithm>
#include <cstring>

namespace ulk_test {
namespace {

using Strings = std::vector<std::string>;
using Kind = Piece::Kind;

// ---- what expressions are made of

struct Item {
  std::string pattern;
  Strings samples;
};
using Items = std::vector<Item>;

Strings wordsOf(const std::string& text, const std::string& gap = " ") {
  Strings words;
  for (size_t at = 0, end = 0; end != text.npos; at = end + gap.size()) {
    end = text.find(gap, at);
    words.push_back(text.substr(at, end == text.npos ? end : end - at));
  }
  return words;
}

// From a list with three blanks between items and one between an item and its samples.
Items itemsOf(const std::string& list) {
  Items items;
  for (const std::string& row : wordsOf(list, "   ")) {
    const Strings words = wordsOf(row);
    items.push_back({words[0], {words.begin() + 1, words.end()}});
  }
  return items;
}

const Items& phrases() {
  static const Items kPhrases = {
      {R"(\d{4}-\d\d-\d\d)", {"2024-05-17", "1999-1-01"}},
      {R"((\d\d?):(\d\d)(?::(\d\d))?)", {"12:30", "7:05:59", "7:5"}},
      {R"(\b[\w.+-]+@\w+(?:\.\w+)+\b)", {"a.b@c.org", "x@y", "me+you@mail.example.com"}},
      {R"((\w+)\s*=\s*("[^"]*"|\S+))", {"key = \"some value\"", "a=b", "k ="}},
      {R"("(?:[^"\\]|\\.)*")", {R"("a\"b")", R"("")", R"("abc)"}},
      {R"('[^'\n]*')", {"'a b'", "'ab\n'"}},
      {R"(\b(?:ERROR|WARN(?:ING)?|INFO|FATAL)\b)", {"ERROR", "WARNING", "WARN", "INFOS"}},
      {R"(^\[(\w+)\]\s*(.*)$)", {"[main] all is well", "[x]"}},
      {R"(/\*.*?\*/)", {"/* a */", "/**/", "/* *"}},
      {R"(//[^\n]*)", {"// note", "//", "/ /"}},
      {R"(#.*$)", {"# note", "#"}},
      {R"([-+]?\d+(?:\.\d*)?(?:[eE][-+]?\d+)?)", {"-12.5e+3", "7", "1.", "+2e"}},
      {R"(0x[0-9a-fA-F]+)", {"0x1fA", "0x", "0xg"}},
      {R"((?:\d{1,3}\.){3}\d{1,3})", {"192.168.0.1", "1.2.3", "1.2.3.4444"}},
      {R"(https?://[^\s/]+(?:/\S*)?)", {"http://a.b/c?d", "https://x", "http:/x"}},
      {R"(<(\w+)[^>]*>.*?</\1>)", {"<b>x</b>", "<a href>y</b>", "<i></i>"}},
      {R"(<[^>]+>)", {"<br>", "<>", "<a"}},
      {R"(^\s*$)", {"", "  ", "\n"}},
      {R"(\s+$)", {"  ", "\t\n"}},
      {R"([A-Z][a-z]+(?: [A-Z][a-z]+)*)", {"New York", "Ab", "A"}},
      {R"((\w)\1+)", {"aaa", "ab", "__"}},
      {R"((?=.*\d)(?=.*[a-z]).{4,})", {"abc1", "1abcd", "abcd"}},
      {R"((?<!\d)\d{3}(?!\d))", {"123", "1234", "a12"}},
      {R"((?<=\$)\d+)", {"$12", "12", "$$7"}},
      {R"(\((?:[^()]|\([^()]*\))*\))", {"(a(b)c)", "((", "()"}},
      {R"((?:a+)+b)", {"aaab", "aaaaaaaa"}},
      {R"((a|aa)+$)", {"aaaa", "aaab"}},
      {R"((?:a|b|ab)*c)", {"ababc", "abab"}},
      {R"((x+x+)+y)", {"xxxxy", "xxxxx"}},
      {R"(^(?:([^,]*),)*([^,]*)$)", {"a,b,,c", ","}},
      {R"((?>\d+)(?!\.))", {"12", "12."}},
      {R"((?i)select\s+(.+?)\s+from\b)", {"SELECT a, b FROM t", "select  from"}},
      {R"(\p{Lu}\p{Ll}+)", {"Ab", "\xC3\x89t\xC3\xA9", "\xCE\x91\xCE\xB2"}},
      {R"([^\x00-\x7f]+)", {"\xC3\xA9", "\xE6\xBC\xA2\xE5\xAD\x97", "\xFF"}},
      {R"([^,;\s]+(?=[,;]|$))", {"ab,", "ab", "a b;"}},
      {R"(\w+(?:-\w+)*)", {"well-known", "a--b", "ab"}},
      {R"(^(?:\d+|[a-z]+),)", {"12,", "ab,", "a1,"}},
      {R"((["'])(?:(?!\1).)*\1)", {"'a'", "\"a'b\"", "'a"}},
      {R"(.*\.txt)", {"name.txt", ".txt.txt", "a.tx"}},
      {R"(.+?:)", {"ab:", ":", "a:b:"}},
      {R"((?:a+?b|\w+)c)", {"aaac", "aabc", "ac"}},
      {R"(\x{61}*?[bc])", {"aab", "aa", "b"}},
      {R"((?:a*?b|(?:x|a))[ab])", {"aaa", "ab", "aac"}},
  };
  return kPhrases;
}

// Each takes one character.
const Items& singles() {
  static const Items kSingles = itemsOf(
      ". a \n é   \\d 1 0   \\w a _ Z   \\s \t \n \v   \\D a €   \\W - é \xA9   \\S a \xFF   \\C a \xC3   "
      "\\X a e\xCC\x81 \xCC\x81   [abc] a c   [^a] b \n é   [^ab\\n] c €   [a-f0-9] a 7   [ab1] b 1   "
      "[^\\s\"] a 1   [ABab] a B   [à-ÿ] é É   [αβ] α Β   [α-ωa] σ a \xCF   [^α] β   [б-яё] я Б \xD0   "
      "\\x{e9} é É   \\x{3c3} σ Σ   \\x{20ac} €   "
      "\\x{61} a A   \\x{10428} 𐐨 𐐀   \\x{ffffffe9} \xE9   \\pL a é 漢   \\p{Lu} A É   \\P{Nd} a -   "
      "\\p{Greek} α σ   \\p{^Han} a 漢   \\p{Any} a \xFF   \\p{Mn} \xCC\x81");
  return kSingles;
}

const Items& members() {
  static const Items kMembers = itemsOf(
      "a a   b b B   A-F B f   0-9 5   _ _   \\- -   \t \t   \\n \n   \\d 3   \\w x   \\s \t   \\D x   "
      "\\W é   \\S x   [:alpha:] q Q   [:digit:] 8   [:^digit:] x   [:punct:] !   [:xdigit:] e   [:^word:] -"
      "   é é \xE9   é-ÿ ñ Ñ   \\x{3b1}-\\x{3c9} σ Σ   \\x{e9} é É   z-\\x{100} ~ é Z   \\x80-\\xff \xA9 ÿ   "
      "\\x{ffffff80}-a \xA9 a b   \\x{80000000}-\\x{62} \xE9 a c   \\p{Lu} A   \\P{L} 1   \\p{Han} 漢   "
      "\\Q^]\\E ^ ]   \\101 A   - -");
  return kMembers;
}

struct Bounds {
  const char* text;
  uint32_t least;
  uint32_t most;
};
constexpr uint32_t kMany = 1000;
constexpr Bounds kQuantifiers[] = {
    {"*", 0, kMany},   {"+", 1, kMany}, {"?", 0, 1},        {"*", 0, kMany},     {"+", 1, kMany},
    {"{2}", 2, 2},     {"{1,3}", 1, 3}, {"{2,}", 2, kMany}, {"{0,2}", 0, 2},     {"{3}", 3, 3},
    {"{1}", 1, 1},     {"{0}", 0, 0},   {"{2,5}", 2, 5},    {"{3,40}", 3, 40},   {"{,2}", 0, 2},
    {"{,}", 0, kMany}, {"{}", 0, 0},    {"{9}", 9, 9},      {"{0,200}", 0, 200}, {"{17,}", 17, kMany},
};

const char* const kAssertions[] = {"^", "$", "\\b", "\\B", "\\A", "\\Z", "\\z", "\\G"};
const char* const kOptionChanges[] = {"(?i)", "(?-i)", "(?s)", "(?-s)", "(?m)", "(?x)", "(?im-s)", "(?-m)"};
const char* const kGroups[] = {"(?:", "(?:", "(", "(", "(", "(?>", "(?i:", "(?-i:", "(?s-i:", "(?m:", "(?x:"};
const char* const kLookarounds[] = {"(?=", "(?!", "(?<=", "(?<!"};
const char* const kOptions[] = {"", "", "", "", "i", "s", "m", "x", "im", "sm", "isx", "i"};
const char* const kWords[] = {"a",         "b",     "ab",   "abc", "aa",  "aab",  "foo",   "foobar",
                              "bar",       "error", "warn", "key", "val", "http", "abcab", "aaaab",
                              "the quick", "-",     ",",    "=",   "\n",  "1",    "10",    "x",
                              "_",         ".",     "(x)",  "A",   "Ab",  " "};

// What is no well-formed character, and characters that are odd.
const Strings& oddities() {
  static const Strings kOddities = wordsOf(
      "\xC3 \xA9 \xE2\x82 \xF0\x9F\x98 \xC0\xAF \xE0\x80\x80 \xFF \xF8\x88\x80\x80\x80 \xFE\x80 "
      "\xFC\x84\x80\x80\x80\x80 \xED\xA0\x80 é € \xCC\x81 Σ \xCD\xB8 \xF4\x90\x80\x80");
  return kOddities;
}

Piece leaf(std::string pattern, Strings samples = {""}) {
  Piece piece;
  piece.open = std::move(pattern);
  piece.samples = std::move(samples);
  return piece;
}

Piece leaf(const Item& item) { return leaf(item.pattern, item.samples); }

Piece group(std::string open, Piece inner) {
  if (inner.kind == Kind::kLeaf || !inner.open.empty() || !inner.quantifier.empty()) {
    Piece all;
    all.kind = Kind::kSequence;
    all.parts.push_back(std::move(inner));
    inner = std::move(all);
  }
  inner.open = std::move(open);
  inner.close = ")";
  return inner;
}

// ---- expressions

constexpr uint32_t kFrequencies[] = {3, 4, 2, 12};

class Generator {
 public:
  explicit Generator(Choices& choices) : c_(choices) {}

  Piece expression() {
    Piece tree = alternatives(c_.oneIn(40) ? 12 + c_.below(40) : 1 + c_.below(5));
    if (c_.oneIn(16)) tree.parts.insert(tree.parts.begin(), leaf(c_.oneIn(2) ? "(?:.*)" : ".*", {"", "ab"}));
    if (tree.kind == Kind::kSequence && c_.oneIn(8))
      tree.parts.insert(tree.parts.begin(), lookaround("(?<="));
    if (tree.kind == Kind::kSequence && c_.oneIn(8)) tree.parts.push_back(lookaround("(?="));
    return tree;
  }

 private:
  Piece alternatives(uint32_t mostItems) {
    if (!c_.oneIn(oneInBars_)) return sequence(mostItems);
    Piece all;
    all.kind = Kind::kAlternatives;
    const std::string prefix = c_.oneIn(3) ? word() : "";
    for (uint32_t i = 0, n = 2 + c_.few(5); i < n; ++i) {
      Piece branch = sequence(c_.below(mostItems + 1));
      if (!prefix.empty()) branch.parts.insert(branch.parts.begin(), literal(prefix));
      all.parts.push_back(std::move(branch));
    }
    return all;
  }

  Piece sequence(uint32_t numItems) {
    Piece all;
    all.kind = Kind::kSequence;
    for (uint32_t i = 0; i < numItems; ++i) {
      if (c_.oneIn(oneInOptions_)) all.parts.push_back(optionChange());
      all.parts.push_back(item());
    }
    if (c_.oneIn(oneInOptions_)) all.parts.push_back(optionChange());
    return all;
  }

  // Now and then one that is there already, so that it meets what is like it.
  Piece item() {
    Piece piece;
    if (c_.oneIn(oneInGroups_) && depth_ < 4) {
      piece = compound();
    } else if (!used_.empty() && c_.oneIn(3)) {
      piece = c_.pick(used_);
    } else {
      used_.push_back(piece = plain());
    }
    if (c_.oneIn(oneInQuantified_) && (!piece.lookaround || c_.oneIn(8))) quantify(piece);
    return piece;
  }

  void quantify(Piece& piece) {
    const Bounds& bounds = c_.pick(kQuantifiers);
    piece.quantifier = bounds.text;
    piece.least = bounds.least;
    piece.most = bounds.most;
    if (c_.oneIn(oneInLazy_)) piece.quantifier += "?";
  }

  Piece optionChange() { return leaf(kOptionChanges[c_.below(mostOptions_)]); }

  Piece plain() {
    switch (c_.oneIn(oneInOthers_) ? c_.below(kPlainKinds) : favourite_) {
      case 0:
      case 1:
      case 2:
      case 3:
        return literal(word());
      case 4:
      case 5:
      case 6:
        return leaf(c_.pick(phrases()));
      case 7:
      case 8:
        return randomClass();
      case 9:
        return anchor();
      case 10:
        return backReference();
      case 11:
        return c_.oneIn(2) ? literal(c_.pick(oddities())) : leaf("\\Qa.b\\E", {"a.b"});
      default:
        return leaf(c_.pick(singles()));
    }
  }

  Piece anchor() {
    Piece piece = leaf(c_.pick(kAssertions));
    piece.lookaround = true;
    return piece;
  }

  std::string word() {
    if (!c_.oneIn(4)) return c_.pick(kWords);
    std::string letters;
    for (uint32_t i = 0, n = 1 + c_.below(20); i < n; ++i) letters += "abcABx1_ "[c_.below(9)];
    return letters;
  }

  static Piece literal(const std::string& bytes) {
    std::string pattern;
    for (const char byte : bytes) {
      if (byte == 0 || byte == '\n') {
        pattern += byte == 0 ? "\\0" : "\\n";
        continue;
      }
      if (std::strchr("\\^$.|?*+()[]{}#/ ", byte)) pattern += '\\';
      pattern += byte;
    }
    return leaf(pattern, {bytes});
  }

  Piece randomClass() {
    Piece piece = leaf(c_.oneIn(4) ? "[^" : "[", {"z", "-"});
    for (uint32_t i = 0, n = 1 + c_.few(5); i < n; ++i) {
      const Item& member = c_.pick(members());
      piece.open += member.pattern;
      piece.samples.insert(piece.samples.end(), member.samples.begin(), member.samples.end());
    }
    piece.open += "]";
    return piece;
  }

  Piece backReference() {
    Piece piece = leaf("");
    piece.reference = 1 + static_cast<int>(c_.few(static_cast<uint32_t>(numGroups_) + 1));
    piece.open = "\\" + std::to_string(piece.reference);
    return piece;
  }

  Piece compound() {
    ++depth_;
    const uint32_t kind = c_.below(10);
    Piece piece = kind < 7 ? plainGroup() : kind == 7 ? conditional() : lookaround(c_.pick(kLookarounds));
    --depth_;
    return piece;
  }

  Piece plainGroup() {
    const std::string open = c_.pick(kGroups);
    const int number = open == "(" ? ++numGroups_ : 0;
    Piece piece = group(open, alternatives(1 + c_.few(4)));
    piece.group = number;
    return piece;
  }

  Piece lookaround(const std::string& open) {
    Piece piece = group(open, open[2] == '<' ? fixedBody() : alternatives(1 + c_.few(3)));
    piece.lookaround = true;
    return piece;
  }

  // Alternatives of one width.
  Piece fixedBody() {
    const uint32_t width = 1 + c_.few(3);
    Piece body;
    body.kind = Kind::kAlternatives;
    for (uint32_t i = 0, n = 1 + c_.few(3); i < n; ++i) {
      Piece branch;
      branch.kind = Kind::kSequence;
      for (uint32_t k = 0; k < width; ++k) branch.parts.push_back(leaf(c_.pick(singles())));
      if (c_.oneIn(6)) branch = group("(", branch);
      if (branch.close == ")") branch.group = ++numGroups_;
      if (c_.oneIn(8)) branch.parts.push_back(anchor());
      body.parts.push_back(std::move(branch));
    }
    return body;
  }

  Piece conditional() {
    const std::string condition =
        c_.oneIn(2) ? lookaround(c_.pick(kLookarounds)).pattern() : "(" + std::to_string(1 + c_.few(3)) + ")";
    Piece branches;
    branches.kind = Kind::kAlternatives;
    for (uint32_t i = 0, n = 1 + c_.below(2); i < n; ++i) branches.parts.push_back(sequence(c_.below(3)));
    return group("(?" + condition, branches);
  }

  static constexpr uint32_t kPlainKinds = 16;

  Choices& c_;
  // Each expression has much of a few things and little of others, so that things of one kind meet.
  const uint32_t favourite_ = c_.below(kPlainKinds);
  const uint32_t oneInOthers_ = c_.pick(kFrequencies);
  const uint32_t oneInBars_ = c_.pick(kFrequencies);
  const uint32_t oneInOptions_ = 2 * c_.pick(kFrequencies);
  const uint32_t mostOptions_ = c_.oneIn(2) ? 2 : std::size(kOptionChanges);
  const uint32_t oneInGroups_ = c_.pick(kFrequencies);
  const uint32_t oneInQuantified_ = c_.pick(kFrequencies);
  const uint32_t oneInLazy_ = c_.pick(kFrequencies);
  std::vector<Piece> used_;
  int depth_ = 0;
  int numGroups_ = 0;
};

// As a slip of the keyboard, or of a fuzzer.
void damage(Choices& c, std::string& bytes, const std::string& alphabet) {
  const auto at = c.below(static_cast<uint32_t>(bytes.size()) + 1);
  const auto length = std::min<size_t>(1 + c.few(4), bytes.size() - at);
  switch (c.below(4)) {
    case 0:
      bytes.erase(at, length);
      break;
    case 1:
      bytes.insert(at, bytes.substr(at, length));
      break;
    case 2:
      bytes.insert(at, 1, c.pick(alphabet));
      break;
    default:
      if (length > 0) bytes[at] = c.pick(alphabet);
  }
}

// ---- texts

class Sampler {
 public:
  explicit Sampler(Choices& choices) : c_(choices) {}

  // Something that the piece may match, of at most about `most` bytes.
  std::string sample(const Piece& piece, size_t most) {
    std::string bytes;
    most_ = most;
    partsLeft_ = 10000;
    append(piece, bytes);
    if (c_.oneIn(2)) flipCase(bytes);
    return bytes;
  }

 private:
  void append(const Piece& piece, std::string& bytes) {
    const uint32_t room = std::min(piece.most - piece.least, c_.oneIn(6) ? kMany : 4);
    const uint32_t times = piece.least + c_.below(room + 1);
    for (uint32_t i = 0; i < times && bytes.size() < most_ && partsLeft_ > 0; ++i) appendOnce(piece, bytes);
  }

  void appendOnce(const Piece& piece, std::string& bytes) {
    --partsLeft_;
    if (piece.lookaround && !c_.oneIn(4)) return;
    const size_t start = bytes.size();
    if (piece.reference > 0) bytes += captured_[piece.reference];
    if (piece.kind == Kind::kLeaf) bytes += c_.pick(piece.samples);
    if (piece.kind == Kind::kAlternatives) append(c_.pick(piece.parts), bytes);
    if (piece.kind == Kind::kSequence)
      for (const Piece& part : piece.parts) append(part, bytes);
    if (piece.group > 0) captured_[piece.group] = bytes.substr(start);
  }

  void flipCase(std::string& bytes) {
    for (char& byte : bytes) {
      const char lower = static_cast<char>(byte | 0x20);
      if (lower >= 'a' && lower <= 'z' && c_.oneIn(3)) byte = static_cast<char>(byte ^ 0x20);
    }
  }

  Choices& c_;
  size_t most_ = 0;
  int partsLeft_ = 0;
  std::map<int, std::string> captured_;
};

class TextGenerator {
 public:
  TextGenerator(Choices& choices, const Piece& tree)
      : c_(choices),
        sampler_(choices),
        tree_(tree),
        alphabet_(sampler_.sample(tree, 40) + std::string("a b\n\0", 5)) {}

  std::string shortText() {
    std::string text;
    for (uint32_t i = 0, n = c_.below(5); i < n; ++i) text += scrap(40);
    return text;
  }

  std::string longText() {
    const size_t length = 12300 + c_.below(3700);
    std::string unit = c_.oneIn(3) ? scrap(100) : c_.oneIn(2) ? std::string(1, c_.pick(alphabet_)) : "word ";
    if (unit.empty()) unit = " ";
    std::string text;
    while (text.size() < length) text += unit;
    for (uint32_t i = 0, n = c_.below(8); i < n; ++i) place(text, scrap(c_.oneIn(8) ? 5000 : 60));
    return text;
  }

 private:
  static constexpr size_t kStride = 4096;  // of the search for places to start at

  // Over what stands at the start, at the end or about the end of a stride.
  void place(std::string& text, const std::string& scrap) {
    const size_t place = c_.below(5);
    const size_t middle = place == 0 ? 0 : place == 4 ? text.size() : place * kStride;
    const size_t at = middle - std::min<size_t>(middle, c_.below(static_cast<uint32_t>(scrap.size()) + 8));
    text.replace(at, std::min(scrap.size(), text.size() - at), scrap);
  }

  std::string scrap(size_t most) {
    std::string bytes;
    switch (c_.below(8)) {
      case 5:
        return std::string(1 + c_.below(static_cast<uint32_t>(most)), c_.pick(alphabet_));
      case 6:
        for (uint32_t i = 0, n = c_.below(10); i < n; ++i) bytes += c_.pick(alphabet_);
        return bytes;
      case 7:
        return c_.pick(oddities());
      default:
        bytes = sampler_.sample(tree_, most);
        if (c_.oneIn(2)) damage(c_, bytes, alphabet_);
        return bytes;
    }
  }

  Choices& c_;
  Sampler sampler_;
  const Piece& tree_;
  const std::string alphabet_;
};

}  // namespace

uint32_t RandomChoices::below(uint32_t n) {
  state_ += 0x9E3779B97F4A7C15;
  uint64_t mixed = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
  return static_cast<uint32_t>(mixed >> 32) % n;
}

uint32_t ByteChoices::below(uint32_t n) {
  uint32_t value = 0;
  for (uint32_t most = n - 1; most > 0 && next_ != end_; most >>= 8) value = value << 8 | *next_++;
  return value % n;
}

std::string Piece::pattern() const {
  std::string pattern = open;
  for (const Piece& part : parts) {
    if (kind == Kind::kAlternatives && &part != parts.data()) pattern += '|';
    pattern += part.pattern();
  }
  return pattern + close + quantifier;
}

GeneratedExpression generateExpression(Choices& choices) {
  GeneratedExpression expression;
  expression.tree = Generator(choices).expression();
  expression.pattern = expression.tree.pattern();
  // Searches that are to tell whether they came to the end are written so.
  if (choices.oneIn(16)) expression.pattern = "(" + expression.pattern + "|\\z)";
  expression.options = choices.pick(kOptions);
  if (choices.oneIn(3)) expression.options += 'g';
  if (choices.oneIn(6)) damage(choices, expression.pattern, R"(()[]{}|?*+\.^$-ab1:=!<>)");
  expression.pattern = expression.pattern.c_str();
  return expression;
}

GeneratedSearch generateSearch(Choices& choices, const GeneratedExpression& expression, bool isLong) {
  TextGenerator generator(choices, expression.tree);
  const std::string all = isLong ? generator.longText() : generator.shortText();
  const size_t most = std::min<size_t>(all.size(), isLong ? kLongest : 40);
  const size_t length = choices.oneIn(2) ? most - std::min<size_t>(most, choices.below(6)) : most;
  GeneratedSearch search = {expression.pattern, expression.options, all.substr(0, length), ""};
  const uint32_t kind = choices.below(6);
  if (kind == 4) search.behind = choices.pick(oddities());
  if (kind == 5) search.behind = all.substr(length, 6);
  search.format = static_cast<int32_t>(choices.below(2));
  if (choices.oneIn(3)) search.capacity = 1 + static_cast<int32_t>(choices.few(12));
  search.replace = choices.oneIn(4);
  search.earlier = static_cast<Earlier>(choices.below(6));
  search.glances = choices.oneIn(2);
  search.limitShare = static_cast<int32_t>(choices.below(256));
  return search;
}

}  // namespace ulk_test
