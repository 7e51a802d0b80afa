// Expressions and texts for the fuzz targets, in memory that a sanitizer watches, and what a search found, as
// values that can be compared.
#pragma once

#include <climits>
#include <string>
#include <vector>

#include "check.h"
#include "ulkch.h"

namespace ulk_fuzz {

struct Record {
  static constexpr int32_t kNull = INT32_MIN;
  int32_t start;  // in the text; kNull for a group that took no part
  int32_t length;

  bool operator==(const Record&) const = default;
};

struct Found {
  ulkStatus status;
  int32_t count;
  std::vector<Record> records;  // those that were written

  bool operator==(const Found&) const = default;
};

// A zero-terminated string in a block of its own.
class CString {
 public:
  explicit CString(const std::string& string)
      : block_({string.c_str(), string.c_str() + string.size() + 1}, kAtEnd) {}
  const char* get() const { return block_.get(); }

 private:
  Block<char> block_;
};

enum class Memory { kCallers, kLibrarys };

class CompiledExpression {
 public:
  CompiledExpression(const std::string& pattern, const std::string& options, Memory memory)
      : pattern_(pattern), options_(options), length_(static_cast<int32_t>(pattern.size())) {
    int32_t size = 0;
    ULK_CHECK(ulksRegExpGetSize(pattern_.get(), &size) == ulkOk);
    if (memory == Memory::kCallers) {
      buffer_ = std::malloc(static_cast<size_t>(size));
      std::memset(buffer_, 0x5A, static_cast<size_t>(size));
      state_ = static_cast<ulkRegExpState*>(buffer_);
      compileAgain();
    } else {
      status_ = ulksRegExpInitAlloc(pattern_.get(), options_.get(), &state_, &errorOffset_);
      ULK_CHECK((state_ != nullptr) == (status_ == ulkOk));
    }
    checkError();
  }
  CompiledExpression(const CompiledExpression&) = delete;
  CompiledExpression& operator=(const CompiledExpression&) = delete;
  ~CompiledExpression() {
    if (!buffer_) ulksRegExpFree(state_);
    std::free(buffer_);
  }

  void compileAgain() {
    status_ = ulksRegExpInit(pattern_.get(), options_.get(), state_, &errorOffset_);
    checkError();
  }

  bool valid() const { return status_ == ulkOk; }
  ulkStatus status() const { return status_; }
  int32_t errorOffset() const { return errorOffset_; }
  ulkRegExpState* state() const { return state_; }

 private:
  static constexpr int32_t kUntouched = -77;

  void checkError() const {
    switch (status_) {
      case ulkOk:
        ULK_CHECK(errorOffset_ == kUntouched);
        break;
      case ulkErrRegExpOptions:
        ULK_CHECK(errorOffset_ == 0);
        break;
      case ulkErrRegExpSyntax:
      case ulkErrRegExpClass:
      case ulkErrRegExpBackRef:
      case ulkErrRegExpGroup:
      case ulkErrRegExpQuantifier:
        ULK_CHECK(errorOffset_ >= 0 && errorOffset_ <= length_);
        break;
      default:
        check(false, "the status is one that a compile may return");
    }
  }

  CString pattern_;
  CString options_;
  int32_t length_;
  void* buffer_ = nullptr;
  ulkRegExpState* state_ = nullptr;
  ulkStatus status_ = ulkOk;
  int32_t errorOffset_ = kUntouched;
};

class PreparedTemplate {
 public:
  explicit PreparedTemplate(const std::string& text)
      : template_(text), block_(sizeOf(template_.get()), kAligned) {
    status_ = ulksRegExpReplaceInit(template_.get(), state());
    ULK_CHECK(block_.holds(block_.units()));
  }

  static size_t sizeOf(const char* text) {
    int32_t size = 0;
    ULK_CHECK(ulksRegExpReplaceGetSize(text, &size) == ulkOk);
    return static_cast<size_t>(size);
  }
  ulkStatus status() const { return status_; }
  ulkRegExpReplaceState* state() const { return reinterpret_cast<ulkRegExpReplaceState*>(block_.get()); }

 private:
  CString template_;
  Block<char> block_;
  ulkStatus status_;
};

// Find records that a call fills.
class FindRecords {
 public:
  explicit FindRecords(int32_t count) : block_(static_cast<size_t>(count), kAligned), count_(count) {}

  ulkRegExpFind* get() const { return block_.get(); }

  // Those written by the call, up to the first that still holds what all were filled with.
  std::vector<Record> written(const uint8_t* text) const {
    ulkRegExpFind unwritten;
    std::memset(&unwritten, Block<char>::kUnwritten, sizeof unwritten);
    std::vector<Record> records;
    const ulkRegExpFind* each = block_.get();
    for (int32_t i = 0; i < count_ && each[i].pFound != unwritten.pFound; ++i) {
      const bool null = each[i].pFound == nullptr;
      records.push_back(
          {null ? Record::kNull : static_cast<int32_t>(each[i].pFound - text), each[i].lenFound});
    }
    return records;
  }

 private:
  Block<ulkRegExpFind> block_;
  int32_t count_;
};

// What a replacement returns in its arguments.
struct ReplaceCall {
  ulkStatus status;
  int32_t sourceLength;
  int32_t length;
  int32_t count;
};

// A text with a zero byte behind it, which is what makes a search safe.
class SearchedText {
 public:
  SearchedText(const std::string& text, size_t shift)
      : block_({text.c_str(), text.c_str() + text.size() + 1}, shift),
        length_(static_cast<int32_t>(text.size())) {}

  const uint8_t* get() const { return block_.get(); }
  int32_t length() const { return length_; }

  Found find(ulkRegExpState* state, int32_t numRecords) const {
    const FindRecords records(numRecords);
    Found found = {ulkOk, numRecords, {}};
    found.status = ulksRegExpFind_8u(get(), length_, state, records.get(), &found.count);
    found.records = records.written(get());
    return found;
  }
  ReplaceCall replace(ulkRegExpState* state, const PreparedTemplate& prepared, const Block<uint8_t>& room,
                      int32_t capacity, const FindRecords& records, int32_t numRecords) const {
    ReplaceCall call = {ulkOk, length_, capacity, numRecords};
    call.status = ulksRegExpReplace_8u(get(), &call.sourceLength, room.get(), &call.length, records.get(),
                                       &call.count, state, prepared.state());
    return call;
  }

 private:
  Block<uint8_t> block_;
  int32_t length_;
};

}  // namespace ulk_fuzz
