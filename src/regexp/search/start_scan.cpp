#include "regexp/search/start_scan.h"

#include "kernels/find_any.h"
#include "kernels/find_substring.h"
#include "kernels/find_unit.h"
#include "regexp/search/caseless_search.h"

namespace ulk {

__attribute__((noinline)) ULK_IN_REGISTERS const uint8_t* passOutside(const uint8_t* at, const uint8_t* end,
                                                                      const ByteSet256& set) {
  while (at < end && !set.contains(*at)) ++at;
  return at;
}

int32_t findStart(const ulkRegExpState& state, const uint8_t* at, int32_t length, const uint8_t* textEnd) {
  const StartFilter& filter = startFilterOf(state);
  int32_t found = -1;
  switch (filter.kind) {
    case StartKind::kByte:
      found = findUnit(at, length, filter.small.bytes[0]);
      break;
    case StartKind::kSmallSet:
      found = withSmallSet(filter.small, [=](auto set) {
        SetProbe<decltype(set)> probe{at, set};
        return scan<Forward>(at, static_cast<size_t>(length), probe);
      });
      break;
    case StartKind::kString:
    case StartKind::kCaselessString: {
      const RxNode& literal = state.nodes()[filter.item];
      const auto behind = static_cast<int32_t>(textEnd - at) - length;
      const int32_t reach = length + std::min(stringLength(literal) - 1, behind);
      found = filter.kind == StartKind::kString
                  ? findSubstring(at, reach, stringOf(literal), stringLength(literal))
                  : findCaseless(at, reach, stringOf(literal), stringLength(literal));
      break;
    }
    default:
      return 0;
  }
  return found < 0 ? length : found;
}

Place findStartPair(const ulkRegExpState& state, const uint8_t* text, int32_t length) {
  const StartPair& pair = startPairOf(state);
  return withSmallSet(startFilterOf(state).small, [&](auto first) {
    if (pair.run > 0) return findRun(text, length, first, pair.run + 1);
    return withSmallSet(pair.second, [&](auto second) { return findPair(text, length, first, second); });
  });
}

}  // namespace ulk
