#include "regexp/compile/classes.h"

#include <cstring>

#include "regexp/compile/properties.h"
#include "regexp/text/utf8.h"

namespace ulk {
namespace {

struct PosixMember {
  RxCode code;  // RX_CHAR or RX_RANGE
  uint8_t low;
  uint8_t high;
};

struct PosixClass {
  char name[8];
  PosixMember members[4];
  int32_t numMembers;
};

// "word" is not here: it is a shorthand by another name. Some sets are not what their names promise (cntrl
// without 127, graph, print and punct with everything above ASCII, punct with the space): programs rely on
// them as they are.
constexpr PosixClass kPosixClasses[] = {
    {"alnum", {{RX_RANGE, 'a', 'z'}, {RX_RANGE, 'A', 'Z'}, {RX_RANGE, '0', '9'}}, 3},
    {"alpha", {{RX_RANGE, 'a', 'z'}, {RX_RANGE, 'A', 'Z'}}, 2},
    {"ascii", {{RX_RANGE, 0, 127}}, 1},
    {"blank", {{RX_CHAR, ' ', 0}, {RX_CHAR, '\t', 0}}, 2},
    {"cntrl", {{RX_RANGE, 0, 31}}, 1},
    {"digit", {{RX_RANGE, '0', '9'}}, 1},
    {"graph", {{RX_RANGE, 33, 255}}, 1},
    {"lower", {{RX_RANGE, 'a', 'z'}}, 1},
    {"print", {{RX_RANGE, 32, 255}}, 1},
    {"punct", {{RX_RANGE, 32, 47}, {RX_RANGE, 58, 64}, {RX_RANGE, 91, 96}, {RX_RANGE, 123, 255}}, 4},
    {"space", {{RX_RANGE, 9, 13}, {RX_CHAR, ' ', 0}}, 2},
    {"upper", {{RX_RANGE, 'A', 'Z'}}, 1},
    {"xdigit", {{RX_RANGE, 'a', 'f'}, {RX_RANGE, 'A', 'F'}, {RX_RANGE, '0', '9'}}, 3},
};

class ClassParser {
 public:
  explicit ClassParser(Parse& in) : in_(in), start_(in.at), header_(in.numNodes) {}

  ulkStatus parse();

 private:
  bool looksLikePosix() const;
  ulkStatus member();
  ulkStatus hyphen();
  ulkStatus bracket();
  ulkStatus posixClass(const uint8_t* name, const uint8_t* nameEnd);
  ulkStatus character();
  ulkStatus escape();
  ulkStatus quote();
  ulkStatus property(int32_t negate);
  ulkStatus finish();

  ulkStatus literal(RxCode code, int32_t value, const uint8_t* where);
  ulkStatus takeByte();
  void add(RxCode code, int32_t value);
  void addShorthand(uint8_t letter);
  void closeOpenRange();

  Parse& in_;
  const uint8_t* const start_;
  const int32_t header_;    // index of the RX_CLASS node
  bool rangeOpen_ = false;  // the last member and a "-" have been read, the upper end is to come
};

ulkStatus ClassParser::parse() {
  if (looksLikePosix()) return in_.fail(ulkErrRegExpClass, in_.at + 1);
  RxNode& header = in_.append(RX_CLASS);
  classNegation(header) = 0;
  ++in_.at;
  if (*in_.at == '^') {
    classNegation(header) = -1;
    ++in_.at;
  }
  if (*in_.at == ']' || *in_.at == '-') takeByte();
  while (*in_.at != ']') {
    if (in_.at == in_.end) return in_.fail(ulkErrRegExpClass, in_.end);
    const ulkStatus status = member();
    if (status != ulkOk) return status;
  }
  return finish();
}

// "[:alpha:]" without the outer brackets is a mistake worth an error: a delimiter first, and again before the
// "]".
bool ClassParser::looksLikePosix() const {
  const uint8_t delimiter = in_.at[1];
  if (!isPosixDelimiter(delimiter)) return false;
  bool recurs = false;
  const uint8_t* p = in_.at + 2;
  for (; p < in_.end && *p != ']'; ++p) {
    if (*p == '\\' && p + 1 < in_.end) ++p;
    if (*p == delimiter) recurs = true;
  }
  return recurs && p < in_.end;
}

ulkStatus ClassParser::member() {
  switch (*in_.at) {
    case '\\':
      return escape();
    case '[':
      return bracket();
    case '-':
      return hyphen();
    default:
      return character();
  }
}

ulkStatus ClassParser::hyphen() {
  const RxNode& last = in_.nodes[in_.numNodes - 1];
  const bool single = last.code == RX_CHAR || last.code == RX_CODEPOINT;
  if (rangeOpen_ || !single || in_.at[1] == ']') return takeByte();
  rangeOpen_ = true;
  ++in_.at;
  return ulkOk;
}

ulkStatus ClassParser::bracket() {
  const uint8_t delimiter = in_.at[1];
  if (!isPosixDelimiter(delimiter)) return takeByte();
  const uint8_t* const close = in_.findPosixEnd(in_.at + 2, delimiter);
  if (!close) return takeByte();
  // Collating symbols and equivalence classes are not supported.
  if (delimiter != ':') return in_.fail(ulkErrRegExpClass, in_.at);
  return posixClass(in_.at + 2, close);
}

ulkStatus ClassParser::posixClass(const uint8_t* name, const uint8_t* nameEnd) {
  const bool negated = *name == '^';
  if (negated) ++name;
  const size_t length = static_cast<size_t>(nameEnd - name);
  const auto named = [&](const char* wanted) {
    return std::strlen(wanted) == length && std::memcmp(name, wanted, length) == 0;
  };

  if (named("word")) {
    addShorthand(negated ? 'W' : 'w');
    in_.at = nameEnd + 2;
    return ulkOk;
  }
  for (const PosixClass& posix : kPosixClasses) {
    if (!named(posix.name)) continue;
    closeOpenRange();
    for (int32_t i = 0; i < posix.numMembers; ++i) {
      RxNode& node = in_.append(posix.members[i].code);
      lowOf(node) = posix.members[i].low;
      if (node.code == RX_RANGE) highOf(node) = posix.members[i].high;
      memberNegation(node) = negated ? -1 : 0;
    }
    in_.at = nameEnd + 2;
    return ulkOk;
  }
  return in_.fail(ulkErrRegExpClass, in_.at);
}

ulkStatus ClassParser::character() {
  const Utf8Char decoded = decodeUtf8(in_.at);
  if (decoded.length == 1) return takeByte();
  const uint8_t* const where = in_.at;
  in_.at += decoded.length;
  return literal(decoded.value < 256 ? RX_CHAR : RX_CODEPOINT, decoded.value, where);
}

ulkStatus ClassParser::escape() {
  const uint8_t* const where = in_.at;
  const uint8_t letter = where[1];
  if (isShorthand(letter)) {
    addShorthand(letter);
    in_.at += 2;
    return ulkOk;
  }
  if (isOctalDigit(letter)) return literal(RX_CHAR, in_.readOctal(1, 3), where);
  switch (letter) {
    case 'E':
      in_.at += 2;
      return ulkOk;
    case 'P':
      return property(-1);
    case 'p':
      return property(0);
    case 'Q':
      return quote();
    case 'b':
      in_.at += 2;
      return literal(RX_CHAR, 8, where);
    case 'c':
      return literal(RX_CHAR, in_.readControl(), where);
    case 'x': {
      if (where[2] != '{') return literal(RX_CHAR, in_.readHexByte(), where);
      int32_t value;
      if (!in_.readHexCodePoint(value)) return in_.fail(ulkErrRegExpSyntax, in_.at);
      return literal(RX_CODEPOINT, value, where);
    }
    default: {
      const int32_t named = namedByte(letter);
      in_.advance(2);
      return literal(RX_CHAR, named >= 0 ? named : letter, where);
    }
  }
}

ulkStatus ClassParser::quote() {
  in_.at += 2;
  const uint8_t* const quoteEnd = in_.findQuoteEnd(in_.at);
  if (!quoteEnd) return in_.fail(ulkErrRegExpClass, in_.end);
  while (in_.at < quoteEnd) {
    const ulkStatus status = takeByte();
    if (status != ulkOk) return status;
  }
  in_.at += 2;
  return ulkOk;
}

ulkStatus ClassParser::property(int32_t negate) {
  closeOpenRange();
  ++in_.at;
  if (ownRegExpParseProperty(in_.at, in_.nodes, in_.numNodes, negate) == 0) return ulkOk;
  return in_.fail(ulkErrRegExpSyntax, in_.at);
}

ulkStatus ClassParser::takeByte() {
  const uint8_t* const where = in_.at++;
  return literal(RX_CHAR, *where, where);
}

// A literal member, or the upper end of an open range.
ulkStatus ClassParser::literal(RxCode code, int32_t value, const uint8_t* where) {
  if (rangeOpen_) {
    RxNode& range = in_.nodes[in_.numNodes - 1];
    if (value < lowOf(range)) return in_.fail(ulkErrRegExpClass, where);
    range.code = RX_RANGE;
    highOf(range) = value;
    rangeOpen_ = false;
    return ulkOk;
  }
  add(code, value);
  return ulkOk;
}

// A byte, a code point or a shorthand's letter: all are the first operand of their nodes.
void ClassParser::add(RxCode code, int32_t value) {
  RxNode& node = in_.append(code);
  node.op1 = value;
  memberNegation(node) = 0;
}

void ClassParser::addShorthand(uint8_t letter) {
  closeOpenRange();
  add(RX_CHARTYPE, letter);
}

// Where no upper end comes, the "-" was a literal.
void ClassParser::closeOpenRange() {
  if (rangeOpen_) add(RX_CHAR, '-');
  rangeOpen_ = false;
}

ulkStatus ClassParser::finish() {
  closeOpenRange();
  RxNode& header = in_.nodes[header_];
  const int32_t numMembers = in_.numNodes - header_ - 1;
  if (numMembers == 0) return in_.fail(ulkErrRegExpGroup, in_.at);

  RxNode& last = in_.nodes[in_.numNodes - 1];
  if (numMembers == 1 && classNegation(header) == 0 && (last.code == RX_CHAR || last.code == RX_CHARTYPE)) {
    // A lone "^" that had to be escaped is refused, however it was written.
    if (last.code == RX_CHAR && byteOf(last) == '^') return in_.fail(ulkErrRegExpGroup, in_.at);
    header = last;
    --in_.numNodes;
  } else {
    memberCount(header) = numMembers;
    patternBytes(header) = static_cast<int32_t>(in_.at + 1 - start_);
    last.code |= kLastMember;
  }
  ++in_.at;
  return ulkOk;
}

}  // namespace

ulkStatus ownRegExpParseClass(Parse& in) { return ClassParser(in).parse(); }

}  // namespace ulk
