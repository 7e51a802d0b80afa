#include "regexp/search/prefilter.h"

#include <algorithm>

namespace ulk {

namespace {

constexpr int32_t kBytesPerWork = 8;        // that the automaton reads in the time of an attempt in vain,
constexpr int32_t kQuickBytesPerWork = 96;  // in which a quicker way finds candidates,
constexpr int32_t kBytesMeasured = 256;     // and whose runs are measured then
constexpr int32_t kRateBytes = 4096;
constexpr int32_t kPatience = 4;  // with candidates that are given up for good

}  // namespace

// Whether other candidates than those in use, if there are any, would have taken less time up to this place.
bool Prefilter::takesLess(const uint8_t* at, int64_t work) const {
  const bool isQuick = note().frame > 0 && Candidates::in(*m_.state, note().frame)->isQuick();
  if (isQuick && !isOn_) return work * kQuickBytesPerWork >= note().bytes + (at - since_);
  return work * kBytesPerWork >= note().bytes + bytesInBlocks(at);
}

// The work in kRateBytes bytes.
int32_t Prefilter::rateOf(const uint8_t* at, int64_t work) const {
  const int64_t bytes = std::max<int64_t>(note().bytes + bytesInBlocks(at), 1);
  return static_cast<int32_t>(std::min<int64_t>(work * kRateBytes / bytes, kPlenty));
}

// Turns candidates on if they will take less time than attempts do, as far as is known; off if they leave too
// many attempts, and those of the automaton for good.
bool Prefilter::decide(const uint8_t* at) {
  if (!counts_) {
    workLeft_ = kPlenty;
    return isOn_;
  }
  const auto work = static_cast<int32_t>(std::min<int64_t>(int64_t{note().look} - workLeft_, kPlenty / 2));
  note().look = work + std::max(work / 4, kLeastPrefilterWork / 4);
  workLeft_ = note().look - work;
  if (note().use == PrefilterUse::kUndecided) make();
  if (!takesLess(at, work)) return isOn_;
  if (isOn_ && candidates_->isQuick()) {
    candidates_->takeSlowerWay();
    turnOff(PrefilterUse::kOff);
  } else if (isOn_) {
    if (rateOf(at, work) + kRateBytes / kBytesPerWork >= note().workWithout) turnOff(PrefilterUse::kUseless);
  } else if (!m_.nonEmpty && work > (m_.textEnd - at) / kBytesMeasured) {
    note().workWithout = std::max(note().workWithout, rateOf(at, work));
    turnOn(at);
  }
  return isOn_;
}

// Begins to count anew.
void Prefilter::forget(PrefilterNote& note, PrefilterUse use) {
  const int32_t least = kLeastPrefilterWork * (use == PrefilterUse::kOn ? kPatience : 1);
  note.use = use;
  note.look = note.workLeft = least;
  note.bytes = 0;
}

void Prefilter::forgetMany(PrefilterNote& note) {
  const bool isOn = note.use == PrefilterUse::kOn;
  if (!isOn || note.bytes >= kMostBytes) forget(note, isOn ? PrefilterUse::kOff : note.use);
}

void Prefilter::make() {
  note().frame = Candidates::make(*m_.state);
  note().use = note().frame > 0 ? PrefilterUse::kOff : PrefilterUse::kUseless;
}

// What searches find out is counted no more.
void Prefilter::turnOff(PrefilterUse use) {
  isOn_ = counts_ = false;
  workLeft_ = kPlenty;
  note().use = use;
}

void Prefilter::turnOn(const uint8_t* at) {
  if (note().use == PrefilterUse::kUseless) return turnOff(PrefilterUse::kUseless);
  candidates_ = Candidates::in(*m_.state, note().frame);
  if (!candidates_->begin(*m_.state, at, m_.textEnd, m_.budget)) return turnOff(PrefilterUse::kOff);
  if (note().use == PrefilterUse::kOff) forget(note(), PrefilterUse::kOn);
  isOn_ = true;
  since_ = at;
  workLeft_ = note().workLeft;
}

const uint8_t* Prefilter::next(const uint8_t* at) {
  if (m_.nonEmpty) return at;  // what is searched then ends behind the next byte
  const uint8_t* candidate = candidates_->nextPlace(at, m_.textStart);
  if (m_.state->format == kFormatUtf8) candidate = candidates_->nextCharacter(candidate, at, m_.textStart);
  if (candidates_->givesUp()) turnOff(PrefilterUse::kUseless);
  return candidate;
}

}  // namespace ulk
