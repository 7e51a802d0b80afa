#include "regexp/program/character_test.h"

#include "regexp/program/characters.h"

namespace ulk {

CharacterTest::CharacterTest(const RxNode& item, uint32_t options) : item_(item), options_(options) {
  if (codeOf(item) == RX_CATEGORY && recordOf(item)) {
    form_ = Form::kKinds;
    kinds_ = kindsOf(*recordOf(item));
  } else if (codeOf(item) == RX_SCRIPT) {
    form_ = Form::kScript;
    isNegated_ = propertyNegation(item) != 0;
  } else if (codeOf(item) == RX_CLASS && recordOf(item) && (page_ = pageOf(item, options))) {
    form_ = Form::kPage;
    isNegated_ = classNegation(item) != 0;
  } else if (codeOf(item) == RX_CLASS && listsMultibyte(item, options)) {
    form_ = Form::kIntervals;
    isNegated_ = classNegation(item) != 0;
    intervals_ = listedIntervals(item);
  }
}

bool acceptsCharacter(const RxNode& item, Utf8Char character, uint8_t byte, uint32_t options) {
  switch (codeOf(item)) {
    case RX_CLASS:
      return classAccepts(item, character, byte, options);
    case RX_CODEPOINT:
      return codePointAccepts(item, character.value, options);
    case RX_CATEGORY:
    case RX_UNIRANGE:
    case RX_SCRIPT:
      return propertyAccepts(item, character.value);
    default:
      return true;
  }
}

}  // namespace ulk
