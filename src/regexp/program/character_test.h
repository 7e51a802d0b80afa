// The test whether an item accepts characters of several bytes, with all that can be found out once for many
// of them.
#pragma once

#include <cstdint>

#include "regexp/program/class_sets.h"
#include "regexp/program/program.h"
#include "regexp/text/utf8.h"
#include "unicode/unicode.h"

#pragma GCC visibility push(hidden)

namespace ulk {

// Whether the item accepts the character, which begins with that byte. True for items that are no character.
bool acceptsCharacter(const RxNode& item, Utf8Char character, uint8_t byte, uint32_t options);

class CharacterTest {
 public:
  CharacterTest(const RxNode& item, uint32_t options);

  // The same. A character of one byte has rules of its own.
  bool accepts(Utf8Char character, uint8_t byte) const {
    if (character.length == 1) return acceptsCharacter(item_, character, byte, options_);
    switch (form_) {
      case Form::kKinds:
        return contains(kinds_, kindOf(character.value));
      case Form::kScript:
        return (scriptOf(character.value) == scriptNumber(item_)) != isNegated_;
      case Form::kPage:
        return page_->contains(character.value) != isNegated_;
      case Form::kIntervals:
        return inIntervals(character.value, intervals_) != isNegated_;
      default:
        return acceptsCharacter(item_, character, byte, options_);
    }
  }

 private:
  enum class Form : uint8_t { kOther, kKinds, kScript, kPage, kIntervals };

  const RxNode& item_;
  const uint32_t options_;
  Form form_ = Form::kOther;
  bool isNegated_ = false;
  const uint32_t* kinds_ = nullptr;
  const CodePointPage* page_ = nullptr;
  Intervals intervals_{};
};

}  // namespace ulk

#pragma GCC visibility pop
