/// @file
/// Expressions that are searched for together. See ulkch.hpp.
#ifndef ULKCH_REGEXP_SET_HPP
#define ULKCH_REGEXP_SET_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "regexp.hpp"

namespace ulkch {

/// @name Sets of expressions
/// @{

/// What a search of a set found with one member.
class set_member : public match {
 public:
  [[nodiscard]] std::string_view name() const noexcept { return name_; }
  [[nodiscard]] ulkStatus status() const noexcept { return status_; }
  /// Tells a member that does not occur from one whose search gave up at the match limit.
  [[nodiscard]] ulkch::verdict verdict() const noexcept {
    if (status_ != ulkOk) return verdict::unknown;
    return size() > 0 ? verdict::match : verdict::no_match;
  }

 private:
  friend class regexp_set;
  set_member(std::string_view name, ulkStatus status, const match& found) noexcept
      : match(found), name_(name), status_(status) {}

  std::string_view name_;
  ulkStatus status_;
};

/// What a search of a set found: a record for each member, in the order in which they were added.
class [[nodiscard]] set_result {
 public:
  [[nodiscard]] const set_member* begin() const noexcept { return members_.data(); }
  [[nodiscard]] const set_member* end() const noexcept { return members_.data() + members_.size(); }
  [[nodiscard]] std::size_t size() const noexcept { return members_.size(); }
  [[nodiscard]] const set_member& operator[](std::size_t index) const noexcept { return members_[index]; }
  /// The member of a name; null if the set has none.
  [[nodiscard]] const set_member* find(std::string_view name) const noexcept {
    const auto* found = std::find_if(begin(), end(), [=](const set_member& m) { return m.name() == name; });
    return found == end() ? nullptr : found;
  }
  /// #ulkOk unless no member was searched for: #ulkErrLength for a text that is too long.
  [[nodiscard]] ulkStatus status() const noexcept { return status_; }
  /// Whether all is known: the verdict of no member is "unknown".
  [[nodiscard]] bool complete() const noexcept {
    return status_ == ulkOk && std::none_of(begin(), end(), [](const set_member& member) {
             return member.verdict() == verdict::unknown;
           });
  }

  set_result(set_result&&) noexcept = default;
  set_result& operator=(set_result&&) noexcept = default;

 private:
  friend class regexp_set;
  explicit set_result(ulkStatus status) noexcept : status_(status) {}

  std::vector<ulkRegExpFind> records_;
  std::vector<set_member> members_;
  ulkStatus status_;
};

/// Expressions with names, searched for together: each for its first match. It owns them, so that none is in
/// it twice or searched elsewhere meanwhile. Many of them are searched for on several threads; see
/// ulksRegExpMultiFind_8u(). One search at a time.
class regexp_set {
 public:
  /// Adds an expression, whose match limit and encoding stay its own.
  /// @return #ulkErrBadId if the name is taken, #ulkErrInvalidState if the expression holds none; the set is
  ///         as it was then
  [[nodiscard]] ulkStatus add(std::string name, regexp expression) {
    if (find(name) != members_.end()) return ulkErrBadId;
    if (!expression.is_compiled()) return ulkErrInvalidState;
    members_.push_back({std::move(name), std::move(expression)});
    state_.reset();
    return ulkOk;
  }
  /// Removes the expression of a name; false if there is none.
  bool remove(std::string_view name) {
    const auto found = find(name);
    if (found == members_.end()) return false;
    members_.erase(found);
    state_.reset();
    return true;
  }
  [[nodiscard]] std::size_t size() const noexcept { return members_.size(); }

  /// Searches a text for every member. The result holds views into the set's names: it lives as long as the
  /// set is not changed.
  set_result search(const text& in) {
    if (in.size() > detail::kMaxLength) return set_result(ulkErrLength);
    if (const ulkStatus status = prepare(); status != ulkOk) return set_result(status);
    const detail::readable read(in);
    set_result result(ulkOk);
    std::vector<ulkRegExpMultiFind> found = make_room(result.records_);
    if (const ulkStatus status = run(read, found); status != ulkOk) return set_result(status);
    for (ulkRegExpFind& record : result.records_) record = read.in_original(record);
    result.members_.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      const bool matched = found[i].status == ulkOk && found[i].numFind > 0;
      const std::size_t count = matched ? static_cast<std::size_t>(found[i].numFind) : 0;
      result.members_.push_back(
          set_member(members_[i].name, found[i].status, match(found[i].pFind, count, in.data())));
    }
    return result;
  }
  template <class String, class = std::enable_if_t<std::is_same_v<String, std::string>>>
  set_result search(String&&) = delete;

 private:
  struct member {
    std::string name;
    regexp expression;
  };

  std::vector<member>::iterator find(std::string_view name) noexcept {
    return std::find_if(members_.begin(), members_.end(), [=](const member& m) { return m.name == name; });
  }

  // Makes the library's set anew after a change: the slots in the order of the members, none free.
  ulkStatus prepare() {
    if (state_ || members_.empty()) return ulkOk;
    ulkRegExpMultiState* made = nullptr;
    ulkStatus status = ulksRegExpMultiInitAlloc(&made, static_cast<std::uint32_t>(members_.size()));
    detail::owned<ulkRegExpMultiState> state(made);
    for (std::size_t i = 0; i < members_.size() && status == ulkOk; ++i)
      status =
          ulksRegExpMultiAdd(members_[i].expression.first_.get(), static_cast<std::uint32_t>(i + 1), made);
    if (status == ulkOk) state_ = std::move(state);
    return status;
  }

  std::vector<ulkRegExpMultiFind> make_room(std::vector<ulkRegExpFind>& records) const {
    std::size_t count = 0;
    for (const member& one : members_) count += one.expression.groups() + 1;
    records.assign(count, {nullptr, -1});
    std::vector<ulkRegExpMultiFind> found;
    found.reserve(members_.size());
    ulkRegExpFind* next = records.data();
    for (const member& one : members_) {
      found.push_back({0, 0, one.expression.record_count(), ulkErrInvalidState, next});
      next += one.expression.record_count();
    }
    return found;
  }

  ulkStatus run(const detail::readable& in, std::vector<ulkRegExpMultiFind>& found) noexcept {
    if (found.empty()) return ulkOk;
    for (const member& one : members_) one.expression.set_limit(one.expression.first_.get(), in.length());
    if (in.length() > 0) return ulksRegExpMultiFind_8u(in.data(), in.length(), found.data(), state_.get());
    // A set is not searched in an empty text.
    for (std::size_t i = 0; i < found.size(); ++i)
      found[i].status = ulksRegExpFind_8u(in.data(), 0, members_[i].expression.first_.get(), found[i].pFind,
                                          &found[i].numFind);
    return ulkOk;
  }

  std::vector<member> members_;
  detail::owned<ulkRegExpMultiState> state_;  // none after a change
};

/// @}

}  // namespace ulkch

#endif
