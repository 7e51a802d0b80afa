#include "regexp/compile/prescan.h"

#include <cstring>

#include "regexp/program/state.h"

namespace ulk {
namespace {

constexpr int32_t kMaxCounted = 1000;  // capturing groups; the main pass runs out of serials before

class Prescan {
 public:
  Prescan(Parse& in, bool extended) : in_(in) { extended_[0] = extended; }

  ulkStatus run();
  int32_t numGroups() const { return numGroups_; }

 private:
  ulkStatus openGroup();
  ulkStatus enterGroup(int32_t bytes);
  ulkStatus skipComment();
  ulkStatus optionGroup();
  ulkStatus skipClass();
  void skipEscape();
  void skipLine();

  Parse& in_;
  int32_t depth_ = 0;
  int32_t numGroups_ = 0;
  bool extended_[kMaxDepth + 1];  // per depth; set when it is entered
};

ulkStatus Prescan::run() {
  while (in_.at < in_.end) {
    ulkStatus status = ulkOk;
    switch (*in_.at) {
      case '(':
        status = openGroup();
        break;
      case ')':
        if (depth_ == 0) return in_.fail(ulkErrRegExpGroup, in_.at);
        --depth_;
        ++in_.at;
        break;
      case '[':
        status = skipClass();
        break;
      case '\\':
        skipEscape();
        break;
      case '#':
        skipLine();
        break;
      default:
        ++in_.at;
    }
    if (status != ulkOk) return status;
  }
  return depth_ == 0 ? ulkOk : in_.fail(ulkErrRegExpGroup, in_.end);
}

ulkStatus Prescan::openGroup() {
  const uint8_t* const open = in_.at;
  if (open[1] != '?') {
    if (++numGroups_ > kMaxCounted) return in_.fail(ulkErrRegExpGroup, open);
    return enterGroup(1);
  }
  switch (open[2]) {
    case '#':
      return skipComment();
    case ')':
      in_.at += 3;
      return ulkOk;
    case '-':
    case 'i':
    case 'm':
    case 's':
    case 'x':
      return optionGroup();
    case '(': {  // a conditional and its condition, which captures nothing
      const ulkStatus status = enterGroup(2);
      return status == ulkOk ? enterGroup(1) : status;
    }
    default:
      return enterGroup(2);
  }
}

ulkStatus Prescan::enterGroup(int32_t bytes) {
  if (depth_ == kMaxDepth) return in_.fail(ulkErrRegExpGroup, in_.at);
  extended_[depth_ + 1] = extended_[depth_];
  ++depth_;
  in_.at += bytes;
  return ulkOk;
}

ulkStatus Prescan::skipComment() {
  while (in_.at < in_.end && *in_.at != ')') ++in_.at;
  if (in_.at == in_.end) return in_.fail(ulkErrRegExpGroup, in_.end);
  ++in_.at;
  return ulkOk;
}

ulkStatus Prescan::optionGroup() {
  bool extended = extended_[depth_];
  bool set = true;
  const uint8_t* p = in_.at + 2;
  for (; p < in_.end && *p != ':' && *p != ')'; ++p) {
    if (*p == '-') set = false;
    if (*p == 'x') extended = set;
  }
  if (*p != ')') {
    const ulkStatus status = enterGroup(2);
    if (status != ulkOk) return status;
  }
  extended_[depth_] = extended;
  in_.at = p < in_.end ? p + 1 : p;
  return ulkOk;
}

ulkStatus Prescan::skipClass() {
  ++in_.at;
  if (*in_.at == '^') ++in_.at;
  if (*in_.at == ']') ++in_.at;
  while (in_.at < in_.end && *in_.at != ']') {
    const uint8_t next = in_.at[1];
    if (*in_.at == '\\' && next == 'Q') {
      const uint8_t* const quoteEnd = in_.findQuoteEnd(in_.at + 2);
      if (!quoteEnd) return in_.fail(ulkErrRegExpClass, in_.end);
      in_.at = quoteEnd + 2;
    } else if (*in_.at == '\\') {
      in_.advance(2);
    } else if (*in_.at == '[' && isPosixDelimiter(next)) {
      const uint8_t* const close = in_.findPosixEnd(in_.at + 2, next);
      in_.at = close ? close + 2 : in_.at + 1;
    } else {
      ++in_.at;
    }
  }
  in_.advance(1);
  return ulkOk;
}

void Prescan::skipEscape() {
  const uint8_t letter = in_.at[1];
  in_.advance(letter == 'c' ? 3 : 2);
  if (letter != 'Q') return;
  const uint8_t* const quoteEnd = in_.findQuoteEnd(in_.at);
  in_.at = quoteEnd ? quoteEnd + 2 : in_.end;
}

void Prescan::skipLine() {
  ++in_.at;
  if (!extended_[depth_]) return;
  const void* const newline = std::memchr(in_.at, '\n', static_cast<size_t>(in_.end - in_.at));
  in_.at = newline ? static_cast<const uint8_t*>(newline) + 1 : in_.end;
}

}  // namespace

ulkStatus prescan(Parse& in, bool extended, int32_t& numCapturingGroups) {
  Prescan pass(in, extended);
  const ulkStatus status = pass.run();
  numCapturingGroups = pass.numGroups();
  return status;
}

}  // namespace ulk
