// Makes the records of classes (class_sets.h), and the sets of properties that are items.
#include <algorithm>
#include <new>

#include "regexp/analysis/analysis.h"
#include "regexp/program/class_members.h"
#include "regexp/program/class_sets.h"

namespace ulk {

namespace {

constexpr int32_t kNodeWords = sizeof(RxNode) / sizeof(uint32_t);
constexpr int32_t kIntervalWords = sizeof(Interval) / sizeof(uint32_t);

// Returns the end of the set, or of its ranges.
uint32_t* writeSet(const Set128& ascii, uint32_t* at) {
  return std::copy(ascii.words, ascii.words + kWordsPerSet, at);
}
uint32_t* writeRecord(const Set128& ascii, uint32_t* at) {
  new (at) AsciiRecord{ascii, AsciiRanges::of(ascii)};
  return at + kRecordWords;
}

uint32_t* writeKinds(uint64_t kinds, uint32_t* at) {
  for (int i = 0; i < kKindWords; ++i) *at++ = static_cast<uint32_t>(kinds >> 32 * i);
  return at;
}

class RecordMaker {
 public:
  RecordMaker(RxNode& header, uint32_t caseless, bool bothCases)
      : header_(header), caseless_(caseless), bothCases_(bothCases) {}

  // Returns the end of the record, `at` if there is no room for one.
  uint32_t* make(uint32_t* at, int64_t room);

 private:
  ClassNote::HighBytes highBytes() const;
  void chooseSets();
  bool chooseParts(int64_t room);
  void placeSets(int64_t room);
  uint32_t* writeSets(uint32_t* record);
  uint32_t* writeParts(uint32_t* at, const uint32_t* end);
  uint32_t* writePage(const Interval* list, int32_t count, uint32_t* at, const uint32_t* end);
  Set128 inClass(const Set128& set) const { return classNegation(header_) != 0 ? inverse(set) : set; }

  RxNode& header_;
  const uint32_t caseless_;
  const bool bothCases_;
  ClassMembers members_;
  ClassNote::Facts facts_{};
  Set128 further_[5];
  uint32_t numFurther_ = 0;
  int32_t numPlain_ = 0;
  int32_t numFolded_ = 0;
  int64_t size_ = 0;  // of the first set and the parts
};

ClassNote::HighBytes RecordMaker::highBytes() const {
  uint32_t any = 0;
  uint32_t all = ~0u;
  uint32_t others = 0;
  for (int i = 0; i < kWordsPerSet; ++i) {
    any |= members_.high.words[i];
    all &= members_.high.words[i];
    others |= members_.high.words[i] ^ members_.chars[0].words[i];
  }
  if (any == 0) return ClassNote::kNone;
  if (all == ~0u) return ClassNote::kAll;
  return others == 0 ? ClassNote::kAsChars : ClassNote::kOwnSet;
}

void RecordMaker::chooseSets() {
  facts_.caseless = caseless_;
  facts_.anyMultibyte = members_.anyMultibyte;
  facts_.highBytes = highBytes();
  if (!members_.anyMultibyte) facts_.numCharSets = members_.numCharSets;
  for (uint32_t i = 0; i < facts_.numCharSets; ++i) further_[numFurther_++] = members_.chars[i];
  if (facts_.highBytes == ClassNote::kOwnSet) further_[numFurther_++] = members_.high;
  if (!bothCases_) return;
  const Set128 other = members_.ascii(!caseless_);
  facts_.otherAscii = !same(other, members_.ascii(caseless_));
  if (facts_.otherAscii) further_[numFurther_++] = inClass(other);
}

bool RecordMaker::chooseParts(int64_t room) {
  size_ = kWordsPerSet;
  if (!members_.anyMultibyte) {
    numPlain_ = bothCases_ || !caseless_ ? members_.numPlain : 0;
    numFolded_ = bothCases_ || caseless_ ? members_.numFolded : 0;
    facts_.kinds = members_.kinds != 0;
    facts_.scripts = members_.hasScripts;
    facts_.lists = numPlain_ + numFolded_ > 0;
    if (facts_.kinds) size_ += kKindWords;
    if (facts_.scripts) size_ += kScriptWords;
    if (facts_.lists) size_ += kListLengths + int64_t{kIntervalWords} * (numPlain_ + numFolded_);
  }
  facts_.ranges = size_ < room;
  if (facts_.ranges) ++size_;
  return size_ <= room;
}

// Which of the further sets stand in the record, and whether the members hold the others. A script, which
// needs its `text`, leaves over enough room for all of them.
void RecordMaker::placeSets(int64_t room) {
  facts_.numStored = static_cast<uint32_t>(std::min<int64_t>(numFurther_, (room - size_) / kWordsPerSet));
  facts_.walk = kWordsPerSet * static_cast<int32_t>(numFurther_ - facts_.numStored) > memberCount(header_);
}

// Returns the end of those in the record.
uint32_t* RecordMaker::writeSets(uint32_t* record) {
  const Set128 ascii = inClass(members_.ascii(caseless_));
  record = facts_.ranges ? writeRecord(ascii, record) : writeSet(ascii, record);
  for (uint32_t set = 0; set < facts_.numStored; ++set) record = writeSet(further_[set], record);
  if (facts_.walk) return record;
  RxNode* member = &header_ + 1;
  for (uint32_t set = facts_.numStored; set < numFurther_; ++set)
    for (const uint32_t word : further_[set].words) setWord(*member++, word);
  return record;
}

// Makes a page of a list, if it tells all and fits. Returns the end of the page.
uint32_t* RecordMaker::writePage(const Interval* list, int32_t count, uint32_t* at, const uint32_t* end) {
  constexpr int32_t kTwoBytes = 0x800;  // code points below have two bytes at most
  if (count == 0 || facts_.kinds || facts_.scripts || facts_.numCharSets > 0 || end - at < kPageWords)
    return at;
  const int32_t first = list[0].low / 64 * 64;
  const int32_t last = list[count - 1].high;
  if (first < 0x80 || last >= kTwoBytes || last - first >= CodePointPage::kSize) return at;
  auto& page = *new (at) CodePointPage{static_cast<uint32_t>(first), {}};
  for (int32_t i = 0; i < count; ++i)
    for (int32_t bit = list[i].low - first; bit <= list[i].high - first; ++bit)
      page.bits[bit / 32] |= 1U << bit % 32;
  facts_.page = true;
  return at + kPageWords;
}

uint32_t* RecordMaker::writeParts(uint32_t* at, const uint32_t* end) {
  if (facts_.kinds) at = writeKinds(members_.kinds, at);
  if (facts_.scripts) at = std::copy(members_.scripts, members_.scripts + kScriptWords, at);
  if (!facts_.lists) return at;
  auto* const list = reinterpret_cast<Interval*>(at + kListLengths);
  const int32_t plain = numPlain_ > 0 ? members_.writePlain(header_, list) : 0;
  const int32_t folded = numFolded_ > 0 ? members_.writeFolded(header_, list + plain) : 0;
  at[0] = static_cast<uint32_t>(plain);
  at[1] = static_cast<uint32_t>(folded);
  return writePage(list, plain, reinterpret_cast<uint32_t*>(list + plain + folded), end);
}

uint32_t* RecordMaker::make(uint32_t* at, int64_t room) {
  for (int32_t i = 1; i <= memberCount(header_); ++i) members_.add((&header_)[i]);
  members_.finish();
  chooseSets();
  setRecord(header_, nullptr);
  if (!chooseParts(room)) return at;
  placeSets(room);
  setRecord(header_, at);
  uint32_t* const end = writeParts(writeSets(at), at + room);
  classNote(header_) = ClassNote::pack(facts_);
  return end;
}

// A property has at least three bytes in the pattern, so that there is room. Returns the end of the record.
uint32_t* makePropertySet(RxNode& item, uint32_t* at, const uint32_t* end) {
  setRecord(item, nullptr);
  if (end - at < kRecordWords + kKindWords) return at;
  ByteSet256 bytes{};
  addAsciiOf(item, 0, bytes);
  setRecord(item, at);
  at = writeRecord(asciiOf(bytes), at);
  if (item.code != RX_CATEGORY) return at;
  return writeKinds(acceptedKinds(static_cast<uint32_t>(categoryMask(item)), propertyNegation(item) != 0),
                    at);
}

// Whether a search can find the caseless bit changed.
bool changesCase(const ulkRegExpState& state) {
  const RxNode* const nodes = state.nodes();
  return std::any_of(nodes, nodes + state.numNodes, [&](const RxNode& node) {
    return ((optionsAfter(node, state.options) ^ state.options) & RX_OPT_CASELESS) != 0;
  });
}

}  // namespace

void makeClassSets(ulkRegExpState& state, SpareWords spare) {
  RxNode* const nodes = state.nodes();
  const bool bothCases = changesCase(state);
  uint32_t options = state.options;
  for (int32_t i = 0; i < state.numNodes; i = nextNode(nodes, i)) {
    RxNode& node = nodes[i];
    if (bothCases) options = optionsAfter(node, options);
    if (isProperty(node)) spare.begin = makePropertySet(node, spare.begin, spare.end);
    if (node.code != RX_CLASS) continue;
    const int64_t room = (int64_t{patternBytes(node)} - memberCount(node) - 1) * kNodeWords;
    RecordMaker maker(node, options & RX_OPT_CASELESS, bothCases);
    spare.begin = maker.make(spare.begin, std::min<int64_t>(room, spare.end - spare.begin));
  }
}

}  // namespace ulk
