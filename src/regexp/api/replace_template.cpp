#include "regexp/api/replace_template.h"

#include <cstddef>
#include <cstring>

#include "frame/export.h"

using namespace ulk;

namespace {

// Sizes are 32-bit: of a longer template no state can be asked for.
constexpr size_t kMaxTemplateLength = (INT32_MAX - sizeof(ulkRegExpReplaceState)) / sizeof(ReplaceItem);

bool isDigit(char byte) { return byte >= '0' && byte <= '9'; }

// Each method takes what its name says from `at`.
class TemplateParser {
 public:
  TemplateParser(const char* text, ReplaceItem* items) : at_(text), items_(items) {}

  bool parse();
  int32_t numItems() const { return numItems_; }

 private:
  void takeText();
  bool takeReference();
  void addReference(int32_t group);

  const char* at_;
  ReplaceItem* const items_;
  int32_t numItems_ = 0;
};

bool TemplateParser::parse() {
  while (*at_ != '\0') {
    if (*at_ == '\\') {
      ++at_;  // it only ends the text before it
    } else if (*at_ != '$') {
      takeText();
    } else if (!takeReference()) {
      return false;
    }
  }
  return true;
}

void TemplateParser::takeText() {
  const size_t length = std::strcspn(at_, "$\\");
  items_[numItems_++] = {RX_STRING, static_cast<int32_t>(length), at_};
  at_ += length;
}

bool TemplateParser::takeReference() {
  ++at_;
  if (*at_ == '&') {
    ++at_;
    addReference(0);
    return true;
  }
  // The factor 11 is what callers know: it makes a difference only from two digits on. Long numbers wrap.
  uint32_t group = 0;
  for (; isDigit(*at_); ++at_) group = 11 * group + static_cast<uint32_t>(*at_ - '0');
  if (group == 0) return false;
  addReference(static_cast<int32_t>(group));
  return true;
}

void TemplateParser::addReference(int32_t group) {
  ReplaceItem& item = items_[numItems_++];
  item.kind = RX_BACKREF;
  item.value = group;
}

}  // namespace

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpReplaceGetSize(const char* pTemplate, int32_t* pSize) {
  if (!pSize) return ulkErrNullPtr;
  const size_t length = pTemplate ? std::strlen(pTemplate) : 0;
  if (length > kMaxTemplateLength) return ulkErrLength;
  *pSize = static_cast<int32_t>(sizeof(ulkRegExpReplaceState) + length * sizeof(ReplaceItem));
  return ulkOk;
}

ULK_EXPORT ulkStatus ULK_CALL ulksRegExpReplaceInit(const char* pTemplate, ulkRegExpReplaceState* pState) {
  if (!pState) return ulkErrNullPtr;
  if (!pTemplate) {
    pState->numItems = 0;
    pState->pItems = nullptr;
    return ulkOk;
  }
  pState->pItems = pState->items();
  TemplateParser parser(pTemplate, pState->pItems);
  if (!parser.parse()) return ulkErrRegExpBackRef;
  pState->numItems = parser.numItems();
  return ulkOk;
}
