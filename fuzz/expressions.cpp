// Compiling, searching and replacing: what must be true of the results, whatever they are.
// Numbers: match limit, how much a second limit is larger, format, alignment of the text, records, matches to
// replace, capacity of the destination.
// Fields: options; pattern; replacement template; text.
#include "check.h"
#include "expression.h"
#include "input.h"
#include "replacement.h"
#include "ulkch.h"

using namespace ulk_fuzz;

namespace {

// More than any expression has for one match.
constexpr int32_t kManyRecords = 1001;

struct Case {
  int32_t limit;
  int32_t largerLimit;
  int32_t format;
  size_t shift;
  int32_t numRecords;
  int32_t numMatches;
  int32_t capacity;
  std::string options;
  std::string pattern;
  std::string replacement;
  std::string text;

  explicit Case(Input input)
      : limit(static_cast<int32_t>(input.numberTo(20000))),
        largerLimit(limit + static_cast<int32_t>(input.numberTo(20000))),
        format(static_cast<int32_t>(input.numberTo(1))),
        shift(input.numberTo(31)),
        numRecords(static_cast<int32_t>(input.numberTo(50))),
        numMatches(static_cast<int32_t>(input.numberTo(50))),
        capacity(1 + static_cast<int32_t>(input.numberTo(2000))),
        options(input.field()),
        pattern(input.field().c_str()),
        replacement(input.field().c_str()),
        text(input.rest()) {
    options = options.c_str();
    std::erase(options, 'g');
  }
};

// Whether a pattern may have a lazy repeat, which after each item also asks whether it may end.
bool mayBeLazy(const std::string& pattern) {
  for (size_t i = 1; i < pattern.size(); ++i) {
    if (pattern[i] == '?' && std::strchr("*+?}) \t\n\v\f\r", pattern[i - 1])) return true;
  }
  return false;
}

// Whether what fails for want of steps may let something else succeed, which then needs none.
bool mayMatchWithoutSteps(const std::string& pattern) {
  const auto has = [&](const char* part) { return pattern.find(part) != std::string::npos; };
  return mayBeLazy(pattern) || has("(?!") || has("(?<!") || has("(?(");
}

class Checks {
 public:
  explicit Checks(const Case& c)
      : case_(c),
        first_(c.pattern, c.options, Memory::kCallers),
        all_(c.pattern, c.options + "g", Memory::kLibrarys),
        text_(c.text, c.shift) {}

  void run() {
    expectSameErrors();
    if (!first_.valid()) return;
    prepare(first_, case_.limit);
    prepare(all_, case_.limit);
    expectPlausible(first_);
    expectPlausible(all_);
    expectSameAgain(first_);
    expectSameAgain(all_);
    expectFirstOfAll();
    expectMoreByLargerLimit();
    expectFewerRecords();
    expectSameInBothFormats();
    expectReplaced();
  }

 private:
  void prepare(CompiledExpression& expression, int32_t limit) {
    ULK_CHECK(ulksRegExpSetMatchLimit(limit, expression.state()) == ulkOk);
    ULK_CHECK(ulksRegExpSetFormat(case_.format, expression.state()) == ulkOk);
  }
  Found find(CompiledExpression& expression, int32_t numRecords = kManyRecords) {
    return text_.find(expression.state(), numRecords);
  }
  int32_t length() const { return static_cast<int32_t>(case_.text.size()); }

  // The option g makes no difference to the compile, nor does the owner of the buffer.
  void expectSameErrors() {
    ULK_CHECK(first_.status() == all_.status());
    ULK_CHECK(first_.errorOffset() == all_.errorOffset());
  }

  void expectPlausible(CompiledExpression& expression) {
    const Found found = find(expression);
    ULK_CHECK(found.status == ulkOk || found.status == ulkErrMatchLimit);
    ULK_CHECK(found.status != ulkOk || static_cast<int32_t>(found.records.size()) == found.count);
    // Only a lazy repeat, or a sequence that the end of the text cuts, makes a match longer than the text.
    const int32_t beyond = mayBeLazy(case_.pattern) ? length() : case_.format == 1 ? 5 : 0;
    for (const Record& record : found.records) {
      if (record.start == Record::kNull) {
        ULK_CHECK(record.length == -1);
        continue;
      }
      ULK_CHECK(record.start >= 0 && record.start <= length());
      ULK_CHECK(record.length >= 0 && record.start + record.length <= length() + beyond);
    }
  }

  void expectSameAgain(CompiledExpression& expression) {
    const Found found = find(expression);
    ULK_CHECK(find(expression) == found);
    expression.compileAgain();
    prepare(expression, case_.limit);
    ULK_CHECK(find(expression) == found);
  }

  void expectFirstOfAll() {
    const Found first = find(first_);
    const Found all = find(all_);
    if (first.status == ulkErrMatchLimit || first.count == 0) {
      ULK_CHECK(all.status == ulkOk && all.count == 0);
      return;
    }
    const size_t skip = first.count > 1 ? 1 : 0;
    ULK_CHECK(all.records.size() >= first.records.size() - skip);
    ULK_CHECK(std::equal(first.records.begin() + static_cast<ptrdiff_t>(skip), first.records.end(),
                         all.records.begin()));
    if (skip == 0) expectNoOverlap(all.records);
  }

  static void expectNoOverlap(const std::vector<Record>& matches) {
    for (size_t i = 1; i < matches.size(); ++i) {
      const Record& before = matches[i - 1];
      // The one after an empty match at its place is searched for in a single byte, and what follows begins
      // at the next byte, even if that match takes in a whole sequence.
      const bool beside = i > 1 && matches[i - 2] == Record{before.start, 0};
      ULK_CHECK(matches[i].start >= before.start + (beside ? 1 : before.length));
    }
  }

  void expectMoreByLargerLimit() {
    if (mayMatchWithoutSteps(case_.pattern)) return;
    const Found first = find(first_);
    const Found all = find(all_);
    prepare(first_, case_.largerLimit);
    prepare(all_, case_.largerLimit);
    const Found firstLarger = find(first_);
    const Found allLarger = find(all_);
    ULK_CHECK(first.status != ulkOk || firstLarger == first);
    ULK_CHECK(allLarger.records.size() >= all.records.size());
    ULK_CHECK(std::equal(all.records.begin(), all.records.end(), allLarger.records.begin()));
    prepare(first_, case_.limit);
    prepare(all_, case_.limit);
  }

  void expectFewerRecords() {
    const Found first = find(first_);
    const Found firstFew = find(first_, case_.numRecords);
    if (case_.numRecords == 0) {
      ULK_CHECK(firstFew.status == ulkErrSize && firstFew.count == 0 && firstFew.records.empty());
      return;
    }
    ULK_CHECK(firstFew.status == first.status);
    if (first.status == ulkOk) ULK_CHECK(firstFew.count == std::min(first.count, case_.numRecords));
    ULK_CHECK(std::equal(firstFew.records.begin(), firstFew.records.end(), first.records.begin()));

    // The last match that there is room for may be another one: beside an empty match, the library looks for
    // a second at the same place only where two fit.
    if (first.status != ulkOk || first.count == 0) return;
    const auto perMatch = static_cast<size_t>(std::max(first.count - 1, 1));
    const Found all = find(all_);
    const Found allFew = find(all_, case_.numRecords);
    ULK_CHECK(allFew.records.size() % perMatch == 0);
    const size_t sure = allFew.records.size() - std::min(perMatch, allFew.records.size());
    ULK_CHECK(all.records.size() >= sure);
    ULK_CHECK(std::equal(all.records.begin(), all.records.begin() + static_cast<ptrdiff_t>(sure),
                         allFew.records.begin()));
  }

  void expectSameInBothFormats() {
    const auto ascii = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
    if (!std::all_of(case_.text.begin(), case_.text.end(), ascii)) return;
    for (CompiledExpression* expression : {&first_, &all_}) {
      const Found found = find(*expression);
      ULK_CHECK(ulksRegExpSetFormat(1 - case_.format, expression->state()) == ulkOk);
      ULK_CHECK(find(*expression) == found);
      ULK_CHECK(ulksRegExpSetFormat(case_.format, expression->state()) == ulkOk);
    }
  }

  void expectReplaced() {
    const PreparedTemplate prepared(case_.replacement);
    const auto items = referenceTemplate(case_.replacement);
    ULK_CHECK(prepared.status() == (items ? ulkOk : ulkErrRegExpBackRef));
    if (!items || case_.text.empty()) return;
    expectReplacedFirst(prepared, *items);
    expectReplacedAll(prepared, *items);
  }

  void expectReplacedFirst(const PreparedTemplate& prepared, const TemplateItems& items) {
    // What a template that is measured against the whole capacity needs, and a tail that is not measured.
    const Block<uint8_t> room(static_cast<size_t>(case_.capacity + length()), case_.shift);
    const FindRecords records(case_.numRecords);
    const ReplaceCall call =
        text_.replace(first_.state(), prepared, room, case_.capacity, records, case_.numRecords);
    const Found found = find(first_, case_.numRecords);
    ULK_CHECK(call.count == found.count);
    ULK_CHECK(records.written(text_.get()) == found.records);
    ReferenceReplacement reference(case_.text, case_.capacity, room.units(), items);
    expectSame(call, room, found.records.empty() ? reference.copy() : reference.replaceFirst(found.records));
  }

  void expectReplacedAll(const PreparedTemplate& prepared, const TemplateItems& items) {
    const Found first = find(first_);
    const int32_t perMatch = first.status == ulkOk ? std::max(first.count, 1) : 1;
    const int32_t numRecords = case_.numMatches * perMatch;
    const Block<uint8_t> room(static_cast<size_t>(case_.capacity), case_.shift);
    const FindRecords records(numRecords);
    const ReplaceCall call = text_.replace(all_.state(), prepared, room, case_.capacity, records, numRecords);

    // A search leaves out the whole match where there are groups.
    const int32_t groups = std::max(perMatch - 1, 1);
    const Found found = find(all_, case_.numMatches * groups);
    const auto matches = records.written(text_.get());
    const size_t numMatches = matches.size() / static_cast<size_t>(perMatch);
    ULK_CHECK(matches.size() % static_cast<size_t>(perMatch) == 0);
    ULK_CHECK(found.records.size() == numMatches * static_cast<size_t>(groups));
    for (size_t i = 0; i < found.records.size(); ++i) {
      const size_t skipped = perMatch == 1 ? 0 : i / static_cast<size_t>(groups) + 1;
      ULK_CHECK(found.records[i] == matches[i + skipped]);
    }
    if (found.status == ulkOk) ULK_CHECK(call.count == static_cast<int32_t>(matches.size()));
    if (found.status == ulkErrMatchLimit) ULK_CHECK(call.count == numRecords);

    ReferenceReplacement reference(case_.text, case_.capacity, room.units(), items);
    expectSame(call, room, matches.empty() ? reference.copy() : reference.replaceAll(matches, perMatch));
  }

  static void expectSame(const ReplaceCall& call, const Block<uint8_t>& room, const Replaced& expected) {
    ULK_CHECK(call.status == ulkOk);
    ULK_CHECK(call.sourceLength == expected.sourceLength);
    ULK_CHECK(call.length == expected.length);
    ULK_CHECK(room.units() == expected.memory);
  }

  const Case& case_;
  CompiledExpression first_;
  CompiledExpression all_;
  SearchedText text_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Checks(Case(Input(data, size))).run();
  return 0;
}
