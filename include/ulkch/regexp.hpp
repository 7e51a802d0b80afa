/// @file
/// Expressions that own what they need: search, matches, replacement. See ulkch.hpp.
#ifndef ULKCH_REGEXP_HPP
#define ULKCH_REGEXP_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "strings.hpp"

namespace ulkch {

/// @name Expressions: texts and matches
/// @{

/// A text to search in: like bytes, but it knows whether a zero byte stands behind it. A search looks at the
/// byte behind its text. Of a std::string and a zero-terminated string that is a zero, so they are searched
/// where they are; of anything else it is unknown, so a search makes a copy with a zero behind it: up to 256
/// bytes on the stack, above that by an allocation. Matches always point into the original.
class text : public bytes {
 public:
  text() noexcept : text("") {}
  text(const char* terminated) noexcept : bytes(terminated), is_terminated_(true) {}
  text(const std::string& string) noexcept : bytes(string), is_terminated_(true) {}
  text(std::string_view view) noexcept : bytes(view) {}
  text(bytes view) noexcept : bytes(view) {}
  template <class Container,
            class = std::enable_if_t<detail::holds_units<Container, 1>::value &&
                                     !std::is_convertible_v<const Container&, std::string_view>>>
  text(const Container& bytes_of) noexcept : bytes(bytes_of) {}

  /// A text whose caller promises that a zero byte stands behind it: never copied.
  [[nodiscard]] static text terminated(bytes with_zero_behind) noexcept {
    text result(with_zero_behind.view());
    result.is_terminated_ = true;
    return result;
  }

  [[nodiscard]] bool is_terminated() const noexcept { return is_terminated_; }

 private:
  bool is_terminated_ = false;
};

/// What a search knows about a text. A search that gave up at the match limit, or could not begin, knows
/// nothing: that is not "no match". Its status tells why.
enum class verdict : std::uint8_t { match, no_match, unknown };

/// A match and its groups, as views into the text; valid as long as what it was taken from and the text.
class match {
 public:
  match() noexcept = default;
  match(const ulkRegExpFind* records, std::size_t count, const std::uint8_t* text) noexcept
      : records_(records), count_(count), text_(text) {}

  /// The whole match (0) or a group, cut to the end of the text; empty for a group that took no part, and for
  /// one that the expression does not have.
  [[nodiscard]] std::string_view operator[](std::size_t group) const noexcept {
    if (!matched(group)) return {};
    return {reinterpret_cast<const char*>(records_[group].pFound),
            static_cast<std::size_t>(records_[group].lenFound)};
  }
  /// Whether a group took part in the match.
  [[nodiscard]] bool matched(std::size_t group) const noexcept {
    return group < count_ && records_[group].pFound != nullptr;
  }
  /// Where the match or a group begins, in bytes from the start of the text; npos where it took no part.
  [[nodiscard]] std::size_t position(std::size_t group = 0) const noexcept {
    return matched(group) ? static_cast<std::size_t>(records_[group].pFound - text_) : std::string_view::npos;
  }
  /// One more than the number of groups; 0 where there is no match.
  [[nodiscard]] std::size_t size() const noexcept { return count_; }

 private:
  const ulkRegExpFind* records_ = nullptr;
  std::size_t count_ = 0;
  const std::uint8_t* text_ = nullptr;
};

/// What a search for the first match came to: the match itself, if there is one.
class [[nodiscard]] search_result : public match {
 public:
  search_result(search_result&&) noexcept = default;
  search_result& operator=(search_result&&) noexcept = default;

  [[nodiscard]] explicit operator bool() const noexcept { return size() > 0; }  ///< whether there is a match
  [[nodiscard]] ulkStatus status() const noexcept { return status_; }
  [[nodiscard]] ulkch::verdict verdict() const noexcept {
    if (size() > 0) return verdict::match;
    return status_ == ulkOk ? verdict::no_match : verdict::unknown;
  }

 private:
  friend class regexp;
  explicit search_result(ulkStatus status) noexcept : status_(status) {}
  search_result(std::vector<ulkRegExpFind> records, const std::uint8_t* text) noexcept
      : match(records.data(), records.size(), text), records_(std::move(records)) {}

  ulkStatus status_ = ulkOk;
  std::vector<ulkRegExpFind> records_;
};

/// Successive matches that do not overlap, and whether they are all.
class [[nodiscard]] matches {
 public:
  class iterator {
   public:
    using iterator_category = std::input_iterator_tag;  // gives matches by value
    using value_type = match;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = match;

    iterator(const matches& of, std::size_t index) noexcept : of_(&of), index_(index) {}
    [[nodiscard]] match operator*() const noexcept { return (*of_)[index_]; }
    iterator& operator++() noexcept {
      ++index_;
      return *this;
    }
    iterator operator++(int) noexcept { return {*of_, index_++}; }
    [[nodiscard]] friend bool operator==(const iterator& a, const iterator& b) noexcept {
      return a.index_ == b.index_;
    }
    [[nodiscard]] friend bool operator!=(const iterator& a, const iterator& b) noexcept { return !(a == b); }

   private:
    const matches* of_;
    std::size_t index_;
  };

  [[nodiscard]] iterator begin() const noexcept { return {*this, 0}; }
  [[nodiscard]] iterator end() const noexcept { return {*this, size()}; }
  [[nodiscard]] std::size_t size() const noexcept { return records_.size() / per_match_; }
  [[nodiscard]] bool empty() const noexcept { return records_.empty(); }
  /// The match of an index below size().
  [[nodiscard]] match operator[](std::size_t index) const noexcept {
    return {records_.data() + index * per_match_, per_match_, text_};
  }

  /// Whether there are no others in the text.
  [[nodiscard]] bool complete() const noexcept { return status_ == ulkOk; }
  /// #ulkOk: these are all. #ulkErrMatchLimit: the match limit ran out behind them, and nobody knows what
  /// follows. #ulkWrnSlotsExhausted: there are more than were asked for. #ulkErrSize: more than a search can
  /// report. Else why there was no search.
  [[nodiscard]] ulkStatus status() const noexcept { return status_; }

 private:
  friend class regexp;
  matches(std::size_t per_match, const std::uint8_t* text) noexcept : per_match_(per_match), text_(text) {}

  std::vector<ulkRegExpFind> records_;  // per_match_ for each
  std::size_t per_match_;
  const std::uint8_t* text_;
  ulkStatus status_ = ulkOk;
};

/// A prepared template for replacements: `$&` is the match, `$1` to `$9` are groups, a backslash is left out,
/// all as in ulkch.h; `$10` is group 11 there and here. A group that took no part stands for nothing.
class replacement {
 public:
  /// Prepares a template, of which a copy is kept.
  /// @return #ulkErrRegExpBackRef for a `$` with neither `&` nor the number of a group after it
  [[nodiscard]] static result<replacement> compile(std::string_view source) {
    replacement made;
    for (std::size_t at = 0; at < source.size();) {
      const std::size_t end = std::min(source.find_first_of("$\\", at), source.size());
      if (end > at) made.pieces_.push_back({std::string(source.substr(at, end - at)), 0});
      at = end + 1;
      if (end == source.size() || source[end] == '\\') continue;
      if (!made.take_group(source, at)) return failure{ulkErrRegExpBackRef};
    }
    return made;
  }

  /// Appends what the template becomes for a match.
  void expand(const match& of, std::string& to) const {
    for (const piece& part : pieces_) to.append(part.literal.empty() ? of[part.group] : part.literal);
  }

 private:
  struct piece {
    std::string literal;  // empty for a group
    std::size_t group;
  };

  // Takes what stands behind a "$" at `at`. Numbers are read with the library's factor of 11.
  bool take_group(std::string_view source, std::size_t& at) {
    std::uint32_t group = 0;
    if (at < source.size() && source[at] == '&') {
      ++at;
    } else {
      for (; at < source.size() && source[at] >= '0' && source[at] <= '9'; ++at)
        group = 11 * group + static_cast<std::uint32_t>(source[at] - '0');
      if (group == 0) return false;
    }
    pieces_.push_back({{}, group});
    return true;
  }

  std::vector<piece> pieces_;
};

/// @}
/// @name Expressions
/// @{

/// How a search reads its texts: as UTF-8 or as single bytes.
enum class encoding : std::uint8_t { single_bytes, utf8 };

namespace detail {

struct release_state {
  void operator()(ulkRegExpState* state) const noexcept { ulksRegExpFree(state); }
  void operator()(ulkRegExpMultiState* state) const noexcept { ulksRegExpMultiFree(state); }
};
template <class State>
using owned = std::unique_ptr<State, release_state>;

// A text as a search reads it, with a zero byte behind it: where it is, or copied.
class readable {
 public:
  explicit readable(const text& original) : original_(original.data()), size_(original.size()) {
    if (original.is_terminated()) {
      data_ = original_;
    } else if (size_ < sizeof small_) {
      std::memcpy(small_, original_, size_);
      small_[size_] = 0;
      data_ = small_;
    } else {
      large_.assign(original.view());
      data_ = reinterpret_cast<const std::uint8_t*>(large_.c_str());
    }
  }
  readable(const readable&) = delete;
  readable& operator=(const readable&) = delete;

  [[nodiscard]] const std::uint8_t* data() const noexcept { return data_; }
  [[nodiscard]] std::int32_t length() const noexcept { return static_cast<std::int32_t>(size_); }

  // A record moved to the original text and cut to its end.
  [[nodiscard]] ulkRegExpFind in_original(const ulkRegExpFind& record) const noexcept {
    if (!record.pFound || record.lenFound < 0) return {nullptr, -1};
    const auto at = std::min(static_cast<std::size_t>(record.pFound - data_), size_);
    const std::size_t size = std::min(static_cast<std::size_t>(record.lenFound), size_ - at);
    return {original_ + at, static_cast<std::int32_t>(size)};
  }

 private:
  const std::uint8_t* original_;
  const std::size_t size_;
  const std::uint8_t* data_ = nullptr;
  std::uint8_t small_[257];
  std::string large_;
};

// Whether a byte may continue a UTF-8 sequence.
inline bool continues(std::uint8_t byte) noexcept { return (byte & 0xC0) == 0x80; }

// Whether the byte at `at` has an odd number of backslashes before it.
inline bool is_escaped(std::string_view pattern, std::size_t at) noexcept {
  return (at - (pattern.substr(0, at).find_last_not_of('\\') + 1)) % 2 == 1;
}

// Whether the pattern leaves an escape open that would swallow what comes behind it. The library takes it for
// an escape of a zero byte.
inline bool ends_in_escape(std::string_view pattern) noexcept {
  if (!pattern.empty() && pattern.back() == 'c') pattern.remove_suffix(1);
  return is_escaped(pattern, pattern.size());
}

// Whether a last literal of the pattern may end the text for anything but itself: for another alternative or
// a lookahead. Says so more often than is true.
inline bool sees_last_literal(std::string_view pattern) noexcept {
  return pattern.find('|') != std::string_view::npos || pattern.find("(?=") != std::string_view::npos ||
         pattern.find("(?!") != std::string_view::npos;
}

// Whether options change on the way. The library leaves them changed for its next attempt; but not in a
// group.
inline bool changes_options(std::string_view pattern) noexcept {
  for (std::size_t at = pattern.find("(?", 1); at < pattern.size(); at = pattern.find("(?", at + 2)) {
    const char letter = at + 2 < pattern.size() ? pattern[at + 2] : '\0';
    if (letter != '\0' && std::strchr("imsx-", letter)) return true;
  }
  return false;
}

// Whether an expression may see where the text ends. Says so more often than is true.
inline bool sees_end(std::string_view pattern) noexcept {
  const auto sights = {"$", "\\z", "\\Z", "(?=", "(?!"};
  return std::any_of(sights.begin(), sights.end(),
                     [&](const char* sight) { return pattern.find(sight) != std::string_view::npos; });
}

// What of the text around it an expression may see: nothing, one byte before it and all that follows, or
// more.
enum class sight : std::uint8_t { own, near, wide };

// Often says more than is true, as it does not read classes and quotes. Options for a part count as wide, as
// they may last; so do alternatives beside what sees the byte before, as exclude_more() puts something in
// front; and a "." in front, with which a match begins at the start of a line.
inline sight sight_of(std::string_view pattern) noexcept {
  if (pattern.substr(0, 1) == "." || pattern.substr(0, 4) == "(?:.") return sight::wide;
  bool near = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char next = i + 1 < pattern.size() ? pattern[i + 1] : '\0';
    const char third = i + 2 < pattern.size() ? pattern[i + 2] : '\0';
    if (pattern[i] == '^' || pattern[i] == '$') {
      const bool in_class = i > 0 && pattern[i - 1] == '[' && !is_escaped(pattern, i - 1);
      if (!in_class && !is_escaped(pattern, i)) near = true;
    } else if (pattern[i] == '\\') {
      if (next == 'c') return sight::wide;
      if (next != '\0' && std::strchr("bBAGzZ", next)) near = true;
    } else if (pattern[i] == '(' && next == '?' && third != ':') {
      if (third != '=' && third != '!' && third != '>') return sight::wide;
      near = true;
    }
  }
  if (near && pattern.find('|') != std::string_view::npos) return sight::wide;
  return near ? sight::near : sight::own;
}

}  // namespace detail

/// A compiled expression. Owns its memory; may be moved, which does not move what it has compiled. Holding
/// none, after a move or a failed compile, it refuses every search with #ulkErrInvalidState. A text of more
/// than 2147483647 bytes is refused with #ulkErrLength.
///
/// One search at a time. It needs up to 832 KiB of stack: the limit grows with the text.
class regexp {
 public:
  struct compiled;

  /// An expression that finds nothing.
  regexp() noexcept = default;
#if ULKCH_HAS_EXCEPTIONS
  /// As compile(); throws an error.
  explicit regexp(std::string_view pattern, std::string_view options = {});
#endif

  /// Compiles a pattern: 40 KiB and 20 bytes for each of its bytes.
  ///
  /// In the functions of ulkch.h a literal at the end of a pattern ends the text behind its last occurrence,
  /// for lookahead and other alternatives too: there `^(?!.*admin).*user` matches in "user admin", and
  /// `warning|colou?r` finds nothing in "a warning". Here it does not: such patterns are compiled with an
  /// empty group behind them, which changes nothing else. It may cost speed, as texts without the literal are
  /// not passed over. There, too, options that change within a pattern, as in `a(?i)b`, stay changed when the
  /// next place is tried; here such patterns are compiled in a group, and they do not.
  /// @param pattern  without zero bytes, and not ending in the middle of an escape, in a lone backslash or
  /// one with a
  ///                 "c" behind it: #ulkErrRegExpSyntax
  /// @param options  letters of `simx`. `g` is refused, as the function called tells whether all matches are
  ///                 meant: #ulkErrRegExpOptions
  /// @return the expression, or the status and where in the pattern the error was noticed
  [[nodiscard]] static compiled compile(std::string_view pattern, std::string_view options = {});

  [[nodiscard]] bool is_compiled() const noexcept { return first_ != nullptr; }
  /// The number of groups.
  [[nodiscard]] std::size_t groups() const noexcept { return groups_; }

  /// How many steps a search may take before it gives up: by default 10000 and 100 for each byte of the text.
  void set_match_limit(std::int32_t steps, std::int32_t steps_per_byte = 0) noexcept {
    limit_ = std::max(steps, 0);
    limit_per_byte_ = std::max(steps_per_byte, 0);
  }
  /// Texts are UTF-8 unless this says otherwise.
  void set_encoding(ulkch::encoding encoding) noexcept {
    encoding_ = encoding;
    for (ulkRegExpState* state : {first_.get(), every_.get(), behind_.get()})
      if (state) ulksRegExpSetFormat(static_cast<std::int32_t>(encoding), state);
  }

  /// Tells whether the expression matches. Needs no memory but for the copy of a text.
  [[nodiscard]] ulkch::verdict test(const text& in) {
    ulkRegExpFind record;
    std::int32_t count = 1;
    if (check(in) != ulkOk || find_first(detail::readable(in), 0, &record, &count) != ulkOk)
      return verdict::unknown;
    return count > 0 ? verdict::match : verdict::no_match;
  }

  /// Searches for the first match. Allocates its records if there is one.
  search_result search(const text& in) {
    if (const ulkStatus status = check(in); status != ulkOk) return search_result(status);
    const detail::readable read(in);
    std::int32_t count = record_count();
    const ulkStatus status = find_first(read, 0, records_.data(), &count);
    if (status != ulkOk || count == 0) return search_result(status);
    std::vector<ulkRegExpFind> records(records_);
    for (ulkRegExpFind& record : records) record = read.in_original(record);
    return {std::move(records), in.data()};
  }

  /// Searches for all matches, or for so many at the most.
  ///
  /// The library's own search for all does not tell when the match limit stops it. So this one makes sure
  /// that there is no further match, each of its searches within the whole limit:
  /// - An expression that sees at most one byte before its match finds its matches by the library's search.
  ///   Then the rest of the text behind the last one is searched for the first match, which always tells; the
  ///   rest is a text of its own there, begun one byte earlier where the expression may see that byte. This
  ///   takes up to about twice the time.
  /// - All others are compiled again, with an alternative that matches at the end of the text: getting there
  ///   tells. Those are expressions with lookbehind, a conditional, options for a part or the option `x`,
  ///   with `|` beside an anchor, `\b` or a lookahead, with a "." at their start, and those that have matched
  ///   the empty string. Matches of a leading ".*" may begin within a line then. This may be many times
  ///   slower.
  ///
  /// As in Perl, an empty match may follow a match at its end. In UTF-8 none is reported before a byte that
  /// continues a character. Behind an empty match, one that is not empty is found at the same place only if
  /// it fits into one byte; and not at all for a pattern with `$`, `\z`, `\Z` or lookahead, as the library
  /// would take the end of that byte for the end of the text.
  ///
  /// @return the matches, and whether they are all. Of those that are compiled again, an expression with 999
  ///         groups or so many levels is refused with #ulkErrRegExpGroup; one with N groups, N above 8, and
  ///         an octal escape that reads as N + 1 with #ulkErrRegExpBackRef: write `\012` for `\12`.
  matches find_all(const text& in, std::size_t most = std::string_view::npos);

  /// A text with all matches of find_all() replaced. Where it does not find all, its status and no text.
  [[nodiscard]] result<std::string> replace_all(const text& in, const replacement& by) {
    return replace_all(in, [&](const match& found, std::string& to) { by.expand(found, to); });
  }
  [[nodiscard]] result<std::string> replace_all(const text& in, std::string_view by) {
    const result<replacement> prepared = replacement::compile(by);
    if (!prepared) return failure{prepared.status()};
    return replace_all(in, *prepared);
  }
  /// The same by a function `append(match, std::string&)`, which appends what comes in place of a match.
  template <class Append, class = std::enable_if_t<std::is_invocable_v<Append&, const match&, std::string&>>>
  [[nodiscard]] result<std::string> replace_all(const text& in, Append&& append) {
    const matches found = find_all(in);
    if (!found.complete()) return failure{found.status()};
    return replaced(in, found, append);
  }

  /// A text with the first match replaced; where there is none, a copy.
  [[nodiscard]] result<std::string> replace_first(const text& in, const replacement& by) {
    return replace_first(in, [&](const match& found, std::string& to) { by.expand(found, to); });
  }
  [[nodiscard]] result<std::string> replace_first(const text& in, std::string_view by) {
    const result<replacement> prepared = replacement::compile(by);
    if (!prepared) return failure{prepared.status()};
    return replace_first(in, *prepared);
  }
  /// The same by a function, as for replace_all().
  template <class Append, class = std::enable_if_t<std::is_invocable_v<Append&, const match&, std::string&>>>
  [[nodiscard]] result<std::string> replace_first(const text& in, Append&& append) {
    const search_result found = search(in);
    if (found.status() != ulkOk) return failure{found.status()};
    if (!found) return std::string(in.view());
    return replaced(in, std::initializer_list<match>{found}, append);
  }

  // Matches in a string that ends with the expression would be left without their text.
  template <class String, class = std::enable_if_t<std::is_same_v<String, std::string>>>
  search_result search(String&&) = delete;
  template <class String, class = std::enable_if_t<std::is_same_v<String, std::string>>>
  matches find_all(String&&, std::size_t = 0) = delete;

 private:
  friend class regexp_set;
  using owned_state = detail::owned<ulkRegExpState>;

  [[nodiscard]] ulkStatus check(const text& in) const noexcept {
    if (!first_) return ulkErrInvalidState;
    return in.size() > detail::kMaxLength ? ulkErrLength : ulkOk;
  }
  [[nodiscard]] std::int32_t record_count() const noexcept { return static_cast<std::int32_t>(groups_) + 1; }

  void set_limit(ulkRegExpState* of, std::int32_t length) const noexcept {
    const std::int64_t steps = limit_ + std::int64_t{limit_per_byte_} * length;
    ulksRegExpSetMatchLimit(static_cast<std::int32_t>(std::min<std::int64_t>(steps, detail::kMaxLength)), of);
  }

  // Searches in the rest of a text that begins at `from`, as in a text of its own.
  ulkStatus find_first(const detail::readable& in, std::int32_t from, ulkRegExpFind* records,
                       std::int32_t* count) noexcept {
    set_limit(first_.get(), in.length());
    return ulksRegExpFind_8u(in.data() + from, in.length() - from, first_.get(), records, count);
  }

  // Keeps a last literal from ending the text, and options from lasting. Sets pattern_ to what is searched
  // for.
  ulkStatus shield(std::string_view pattern) {
    pattern_ = pattern;
    const bool in_group = detail::changes_options(pattern);
    if (!in_group && !detail::sees_last_literal(pattern)) return ulkOk;
    // A pattern may end inside \Q or a comment; either would swallow what comes behind it, also a parenthesis
    // that closes nothing.
    std::int32_t offset = 0;
    for (const char* closer : {"", "\\E", "\n"}) {
      pattern_ = std::string(pattern) + closer;
      if (compile_state(pattern_ + ')', options_, first_, offset) != ulkOk) break;
    }
    pattern_ = in_group ? "(?:" + pattern_ + ')' : pattern_ + "(?:)";
    return compile_state(pattern_, options_, first_, offset);
  }

  static ulkStatus compile_state(const std::string& pattern, const std::string& options, owned_state& into,
                                 std::int32_t& offset) noexcept {
    ulkRegExpState* made = nullptr;
    const ulkStatus status = ulksRegExpInitAlloc(pattern.c_str(), options.c_str(), &made, &offset);
    into.reset(made);
    return status;
  }

  void count_groups() {
    // A search without a single step ends at the limit; the count then is the number of records that there
    // could be, as it is for a pattern that matches without one.
    records_.resize(1000);
    auto count = static_cast<std::int32_t>(records_.size());
    ulksRegExpSetMatchLimit(0, first_.get());
    static_cast<void>(ulksRegExpFind_8u(reinterpret_cast<const std::uint8_t*>(""), 0, first_.get(),
                                        records_.data(), &count));
    groups_ = static_cast<std::size_t>(std::max(count, 1)) - 1;
    records_.resize(groups_ + 1);
    records_.shrink_to_fit();
  }

  // What all searches of find_all() share.
  struct all_records {
    ulkStatus status = ulkOk;
    std::vector<ulkRegExpFind> records;  // per_match for each match
    std::size_t per_match = 0;
  };

  [[nodiscard]] bool is_framed() const noexcept { return sight_ == detail::sight::wide; }
  ulkStatus compile_every();
  ulkStatus compile_framed(const std::string& options);
  all_records collect(const detail::readable& in, std::size_t per_match, std::size_t most);
  ulkStatus find_plain(const detail::readable& in, std::size_t most, matches& into);
  ulkStatus exclude_more(const detail::readable& in, std::int32_t end);
  ulkStatus find_framed(const detail::readable& in, std::size_t most, matches& into);
  void keep(const detail::readable& in, const all_records& found, matches& into) const;

  template <class Found, class Append>
  static std::string replaced(const text& in, const Found& found, Append& append) {
    std::string whole;
    whole.reserve(in.size());
    std::size_t used = 0;
    for (const match& one : found) {
      whole.append(in.view().substr(used, one.position() - used));
      append(one, whole);
      used = one.position() + one[0].size();
    }
    whole.append(in.view().substr(used));
    return whole;
  }

  std::string pattern_;  // as it is searched for
  std::string options_;
  owned_state first_;
  owned_state every_;                          // made by the first find_all()
  owned_state behind_;                         // the pattern, not at the start of a text
  detail::sight sight_ = detail::sight::wide;  // "wide": find_all() searches for (?:pattern|(\z))
  std::size_t groups_ = 0;
  std::int32_t limit_ = 10000;
  std::int32_t limit_per_byte_ = 100;
  ulkch::encoding encoding_ = ulkch::encoding::utf8;
  std::vector<ulkRegExpFind> records_;  // room for one match
};

/// What regexp::compile() gives: the expression, or why there is none and where.
struct [[nodiscard]] regexp::compiled : result<regexp> {
  using result::result;
  std::size_t error_offset = 0;  ///< of a refused pattern: in bytes from its start
};

inline regexp::compiled regexp::compile(std::string_view pattern, std::string_view options) {
  const auto refused = [](ulkStatus status, std::size_t offset) {
    compiled none(failure{status});
    none.error_offset = offset;
    return none;
  };
  if (options.find_first_of(std::string_view("g\0", 2)) != std::string_view::npos)
    return refused(ulkErrRegExpOptions, 0);
  if (const std::size_t zero = pattern.find('\0'); zero != std::string_view::npos)
    return refused(ulkErrRegExpSyntax, zero);

  regexp made;
  made.options_ = options;
  std::int32_t offset = 0;
  ulkStatus status = compile_state(std::string(pattern), made.options_, made.first_, offset);
  if (status != ulkOk) return refused(status, static_cast<std::size_t>(offset));
  if (detail::ends_in_escape(pattern)) return refused(ulkErrRegExpSyntax, pattern.size());
  if (status = made.shield(pattern); status != ulkOk) return refused(status, pattern.size());
  made.count_groups();
  made.sight_ = options.find('x') == std::string_view::npos ? detail::sight_of(pattern) : detail::sight::wide;
  return made;
}

#if ULKCH_HAS_EXCEPTIONS
inline regexp::regexp(std::string_view pattern, std::string_view options)
    : regexp([&] {
        compiled made = compile(pattern, options);
        if (!made) throw error(made.status(), made.error_offset, pattern);
        return std::move(*made);
      }()) {}
#endif

// Compiles what find_all() searches for.
inline ulkStatus regexp::compile_every() {
  if (every_) return ulkOk;
  const std::string options = options_ + 'g';
  std::int32_t offset = 0;
  const ulkStatus status =
      is_framed() ? compile_framed(options) : compile_state(pattern_, options, every_, offset);
  if (status == ulkOk) ulksRegExpSetFormat(static_cast<std::int32_t>(encoding_), every_.get());
  return status;
}

inline ulkStatus regexp::compile_framed(const std::string& options) {
  // The group of the frame would make a reference of an escape that was an octal number without it.
  if (groups_ >= 9 && pattern_.find('\\' + std::to_string(groups_ + 1)) != std::string::npos)
    return ulkErrRegExpBackRef;
  // A pattern may end inside \Q or a comment; either would swallow the rest of the frame.
  ulkStatus status = ulkErrRegExpGroup;
  for (const char* closer : {"", "\\E", "\n"}) {
    std::int32_t offset = 0;
    status = compile_state("(?:" + pattern_ + closer + "|(\\z))", options, every_, offset);
    if (status == ulkOk) break;
  }
  return status;
}

// Finds all matches with a number of records that grows until there was room for another match. A replacement
// is what finds whole matches together with their groups; it writes to a destination of one byte. Ends with
// the matches so far when the limit is noticed, and when more are certain to be kept than are asked for.
inline regexp::all_records regexp::collect(const detail::readable& in, std::size_t per_match,
                                           std::size_t most) {
  constexpr std::size_t kMostInCharacter = 16;  // of which keep() leaves one
  all_records found;
  found.per_match = per_match;
  std::int32_t size = 0;
  found.status = ulksRegExpReplaceGetSize(nullptr, &size);
  std::vector<void*> memory(static_cast<std::size_t>(size) / sizeof(void*) + 1);
  auto* const nothing = reinterpret_cast<ulkRegExpReplaceState*>(memory.data());
  if (found.status == ulkOk) found.status = ulksRegExpReplaceInit(nullptr, nothing);
  set_limit(every_.get(), in.length());

  const auto length = static_cast<std::size_t>(in.length());
  for (std::size_t room = 32 + length / 256; found.status == ulkOk; room *= 4) {
    if (room > detail::kMaxLength / sizeof(ulkRegExpFind) / per_match) {
      found.status = ulkErrSize;
      break;
    }
    found.records.assign(room * per_match, {nullptr, -1});
    std::uint8_t destination[1];
    std::int32_t used = in.length(), written = 1, count = static_cast<std::int32_t>(room * per_match);
    found.status = ulksRegExpReplace_8u(in.data(), &used, destination, &written, found.records.data(), &count,
                                        every_.get(), nothing);
    const std::size_t filled = static_cast<std::size_t>(std::max(count, 0));
    if (filled < found.records.size()) {
      found.records.resize(filled);
      break;
    }
    // All are said to be filled. If they are not, the limit ran out, which leaves the number as it was.
    std::size_t matched = 0;
    while (matched < room && found.records[matched * per_match].pFound) ++matched;
    if (matched < room) {
      found.status = ulkErrMatchLimit;
      if (matched > 0) --matched;  // the last one may be what it is for want of steps
    }
    if (matched < room || room / kMostInCharacter > most) {
      found.records.resize(matched * per_match);
      break;
    }
  }
  return found;
}

// Takes over what was found, without the matches of the frame. Behind an empty match the library looks at one
// byte as if the text ended there, and goes on behind it: what owes itself to that is left out too, matches
// at such an end and matches inside a character.
inline void regexp::keep(const detail::readable& in, const all_records& found, matches& into) const {
  const std::uint8_t* last_end = in.data();
  const std::uint8_t* empty = nullptr;  // where an empty match stands
  const bool sees_end = detail::sees_end(pattern_);
  into.records_.reserve(found.records.size());
  for (std::size_t i = 0; i < found.records.size(); i += found.per_match) {
    const ulkRegExpFind& whole = found.records[i];
    const bool is_frame = is_framed() && found.records[i + groups_ + 1].pFound;
    const bool inside =
        whole.lenFound == 0 && encoding_ == encoding::utf8 && detail::continues(*whole.pFound);
    if (is_frame || inside || whole.pFound < last_end || (whole.pFound == empty && sees_end)) continue;
    if (whole.lenFound == 0) empty = whole.pFound;
    for (std::size_t group = 0; group <= groups_; ++group)
      into.records_.push_back(in.in_original(found.records[i + group]));
    last_end = whole.pFound + into.records_[into.records_.size() - groups_ - 1].lenFound;
  }
}

// Searches as the library does, and then makes sure that there are no others. Where that cannot be done, and
// for an expression that matches the empty string, as what follows is not found alike, the sight becomes
// wide.
inline ulkStatus regexp::find_plain(const detail::readable& in, std::size_t most, matches& into) {
  ulkRegExpFind first;
  std::int32_t count = 1;
  ulkStatus status = find_first(in, 0, &first, &count);
  if (status != ulkOk || count == 0) return status;
  if (status = compile_every(); status != ulkOk) return status;

  const all_records found = collect(in, groups_ + 1, most);
  bool unlike = first.lenFound == 0;
  std::int64_t end = 0;
  for (std::size_t i = 0; i < found.records.size() && !unlike; i += found.per_match) {
    end = (found.records[i].pFound - in.data()) + std::int64_t{found.records[i].lenFound};
    unlike = found.records[i].lenFound == 0;
  }
  // A search that begins at the byte before would pass over the rest of a character.
  const bool in_character = end > 0 && end <= in.length() && detail::continues(in.data()[end]);
  if (unlike || (in_character && sight_ == detail::sight::near)) {
    sight_ = detail::sight::wide;
    every_.reset();
    return ulkOk;
  }
  keep(in, found, into);
  if (found.status != ulkOk || into.size() > most) return found.status;
  if (found.records.empty()) return ulkErrMatchLimit;
  // Behind a match that is reported to end beyond the text, nothing is looked for.
  return end > in.length() ? ulkOk : exclude_more(in, static_cast<std::int32_t>(end));
}

// Succeeds if no match begins at `end`, where one has ended, or behind.
inline ulkStatus regexp::exclude_more(const detail::readable& in, std::int32_t end) {
  const bool alone = sight_ == detail::sight::own;
  ulkRegExpFind found;
  std::int32_t count = 1;
  ulkStatus status = find_first(in, alone ? end : end - 1, &found, &count);
  if (status != ulkOk || count == 0) return status;
  if (alone || found.pFound >= in.data() + end) return ulkErrMatchLimit;

  // The byte before begins a match, perhaps only because it was taken for the start of the text.
  std::int32_t offset = 0;
  if (!behind_) status = compile_state("(?!\\A)" + pattern_, options_, behind_, offset);
  if (status != ulkOk) return status;
  ulksRegExpSetFormat(static_cast<std::int32_t>(encoding_), behind_.get());
  set_limit(behind_.get(), in.length());
  count = 1;
  status = ulksRegExpFind_8u(in.data() + end - 1, in.length() - end + 1, behind_.get(), &found, &count);
  return status == ulkOk && count > 0 ? ulkErrMatchLimit : status;
}

inline ulkStatus regexp::find_framed(const detail::readable& in, std::size_t most, matches& into) {
  if (const ulkStatus status = compile_every(); status != ulkOk) return status;
  const all_records found = collect(in, groups_ + 2, most);
  keep(in, found, into);
  if (found.status != ulkOk) return found.status;
  if (found.records.empty()) return ulkErrMatchLimit;
  const ulkRegExpFind& last = found.records[found.records.size() - found.per_match];
  const std::int64_t start = last.pFound - in.data();
  return start == in.length() || start + last.lenFound > in.length() ? ulkOk : ulkErrMatchLimit;
}

inline matches regexp::find_all(const text& in, std::size_t most) {
  matches found(groups_ + 1, in.data());
  found.status_ = check(in);
  if (found.status_ != ulkOk) return found;
  if (in.size() == 0) {
    // Which a replacement refuses.
    search_result only = search(in);
    found.status_ = only.status();
    found.records_ = std::move(only.records_);
  } else {
    const detail::readable read(in);
    if (!is_framed()) found.status_ = find_plain(read, most, found);
    if (is_framed()) found.status_ = find_framed(read, most, found);
  }
  if (found.size() > most) {
    found.records_.resize(most * found.per_match_);
    found.status_ = ulkWrnSlotsExhausted;
  }
  return found;
}

/// @}

}  // namespace ulkch

#endif
