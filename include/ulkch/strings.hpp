/// @file
/// Statuses, results, views, and the string functions of ulkch.h over them. See ulkch.hpp.
#ifndef ULKCH_STRINGS_HPP
#define ULKCH_STRINGS_HPP

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#if defined(__cpp_exceptions) || defined(_CPPUNWIND)
#define ULKCH_HAS_EXCEPTIONS 1
#include <stdexcept>
#endif

#include "ulkch.h"

namespace ulkch {

/// @name Statuses and results
/// @{

/// What a status means, in words; "unknown status" for a number that is none. Two statuses have words of
/// their own here, as they come from other causes than in ulkch.h: regexp::find_all() and regexp_set::add()
/// give them.
[[nodiscard]] constexpr std::string_view status_text(ulkStatus status) noexcept {
  if (status == ulkWrnSlotsExhausted) return "there are more matches than were asked for";
  if (status == ulkErrBadId) return "the set has a member of this name already";
#define ULKCH_TEXT(name, value, meaning) \
  case name:                             \
    return meaning;
  switch (status) { ULK_STATUS_LIST(ULKCH_TEXT) }
#undef ULKCH_TEXT
  return "unknown status";
}

#if ULKCH_HAS_EXCEPTIONS
/// What result::value() and the constructor of regexp throw.
class error : public std::runtime_error {
 public:
  static constexpr std::size_t npos = std::string_view::npos;

  explicit error(ulkStatus status) : std::runtime_error(std::string(status_text(status))), status_(status) {}
  /// For a pattern that was refused: what() tells the place and the pattern as well.
  error(ulkStatus status, std::size_t offset, std::string_view pattern)
      : std::runtime_error(std::string(status_text(status)) + ", at byte " + std::to_string(offset) +
                           " of \"" + std::string(pattern) + '"'),
        status_(status),
        offset_(offset) {}
  [[nodiscard]] ulkStatus status() const noexcept { return status_; }
  /// Where in the pattern the error was noticed, in bytes from its start; npos for what is about no pattern.
  [[nodiscard]] std::size_t offset() const noexcept { return offset_; }

 private:
  ulkStatus status_;
  std::size_t offset_ = npos;
};
#endif

/// The status of a result without a value.
struct failure {
  ulkStatus status;
};

/// A value, or the status that tells why there is none; then the value is an empty one.
template <class T>
class [[nodiscard]] result {
 public:
  result(T value) noexcept(std::is_nothrow_move_constructible_v<T>) : value_(std::move(value)) {}
  result(failure why) noexcept(std::is_nothrow_default_constructible_v<T>) : status_(why.status) {}

  [[nodiscard]] explicit operator bool() const noexcept { return status_ == ulkOk; }
  [[nodiscard]] ulkStatus status() const noexcept { return status_; }
  [[nodiscard]] T& operator*() & noexcept { return value_; }
  [[nodiscard]] const T& operator*() const& noexcept { return value_; }
  [[nodiscard]] T&& operator*() && noexcept { return std::move(value_); }
  [[nodiscard]] T* operator->() noexcept { return &value_; }
  [[nodiscard]] const T* operator->() const noexcept { return &value_; }
#if ULKCH_HAS_EXCEPTIONS
  /// The value; throws an error where there is none.
  [[nodiscard]] T& value() & {
    check();
    return value_;
  }
  [[nodiscard]] const T& value() const& {
    check();
    return value_;
  }
  [[nodiscard]] T value() && {
    check();
    return std::move(value_);
  }
#endif

 private:
#if ULKCH_HAS_EXCEPTIONS
  void check() const {
    if (status_ != ulkOk) throw error(status_);
  }
#endif

  ulkStatus status_ = ulkOk;
  T value_{};
};

/// Where something was found: true and an index, or false. In a text of more than 2147483647 units nothing is
/// looked for: then the status is #ulkErrLength.
class [[nodiscard]] position {
 public:
  static constexpr std::size_t npos = std::string_view::npos;

  constexpr position(ulkStatus status, std::size_t index) noexcept : status_(status), index_(index) {}
  [[nodiscard]] constexpr explicit operator bool() const noexcept { return index_ != npos; }
  [[nodiscard]] constexpr std::size_t operator*() const noexcept { return index_; }  ///< npos if not found
  [[nodiscard]] constexpr ulkStatus status() const noexcept { return status_; }

 private:
  ulkStatus status_;
  std::size_t index_;
};

/// @}
/// @name What goes in
/// @{

namespace detail {

// Whether a type is an array or container of units of one width that lie one behind the other.
template <class Container, std::size_t width, class = void>
struct holds_units : std::false_type {};
template <class Container, std::size_t width>
struct holds_units<Container, width,
                   std::void_t<decltype(std::data(std::declval<const Container&>())),
                               decltype(std::size(std::declval<const Container&>()))>> {
  using unit = std::remove_cv_t<std::remove_pointer_t<decltype(std::data(std::declval<const Container&>()))>>;
  static constexpr bool value =
      sizeof(unit) == width && (std::is_integral_v<unit> || std::is_same_v<unit, std::byte>);
};

constexpr std::size_t kMaxLength = std::numeric_limits<std::int32_t>::max();

}  // namespace detail

/// A view of units: what every function here takes. Made of a standard string or view of Char, of a
/// zero-terminated string, or of any array or container of units of this width, such as std::span. Of an
/// array the last unit does not count if it is a zero: so u8"abc" has three. Where a zero is meant, give a
/// pointer and a size.
template <class Unit, class Char>
class basic_units {
 public:
  using view_type = std::basic_string_view<Char>;

  constexpr basic_units() noexcept = default;
  constexpr basic_units(view_type view) noexcept : view_(view) {}
  basic_units(const Unit* data, std::size_t size) noexcept
      : view_(reinterpret_cast<const Char*>(data), size) {}
  constexpr basic_units(const Char* terminated) noexcept : view_(terminated) {}
  basic_units(const std::basic_string<Char>& string) noexcept : view_(string) {}
  template <class Container, class = std::enable_if_t<detail::holds_units<Container, sizeof(Unit)>::value &&
                                                      !std::is_convertible_v<const Container&, view_type>>>
  basic_units(const Container& units) noexcept
      : view_(reinterpret_cast<const Char*>(std::data(units)), std::size(units)) {}
  template <class Element, std::size_t size,
            class = std::enable_if_t<detail::holds_units<Element[size], sizeof(Unit)>::value &&
                                     !std::is_convertible_v<const Element*, view_type>>>
  basic_units(const Element (&array)[size]) noexcept
      : view_(reinterpret_cast<const Char*>(array), size - (array[size - 1] == Element{} ? 1 : 0)) {}

  [[nodiscard]] constexpr view_type view() const noexcept { return view_; }
  [[nodiscard]] constexpr std::size_t size() const noexcept { return view_.size(); }
  /// The first unit; not null for an empty view either.
  [[nodiscard]] const Unit* data() const noexcept {
    static constexpr Unit kNone = 0;
    return view_.data() ? reinterpret_cast<const Unit*>(view_.data()) : &kNone;
  }

 private:
  view_type view_;
};

using bytes = basic_units<std::uint8_t, char>;
using units = basic_units<std::uint16_t, char16_t>;

/// @}
/// @name Search in strings
///
/// As the functions of ulkch.h: an empty string and an empty set are never found. Linear time, no memory.
/// @{

namespace detail {

template <class Units, class Find>
position locate(Units text, Units what, Find find) noexcept {
  if (text.size() > kMaxLength || what.size() > kMaxLength) return {ulkErrLength, position::npos};
  std::int32_t at = -1;
  const ulkStatus status = find(text.data(), static_cast<std::int32_t>(text.size()), what.data(),
                                static_cast<std::int32_t>(what.size()), &at);
  return {status, at < 0 ? position::npos : static_cast<std::size_t>(at)};
}

template <class Units, class Unit, class Find>
position locate_unit(Units text, Unit unit, Find find) noexcept {
  if (text.size() > kMaxLength) return {ulkErrLength, position::npos};
  std::int32_t at = -1;
  const ulkStatus status = find(text.data(), static_cast<std::int32_t>(text.size()), unit, &at);
  return {status, at < 0 ? position::npos : static_cast<std::size_t>(at)};
}

}  // namespace detail

/// The first occurrence of a string.
inline position find(bytes text, bytes what) noexcept { return detail::locate(text, what, ulksFind_8u); }
inline position find(units text, units what) noexcept { return detail::locate(text, what, ulksFind_16u); }

/// The first place of one unit.
inline position find(bytes text, char unit) noexcept {
  return detail::locate_unit(text, static_cast<std::uint8_t>(unit), ulksFindC_8u);
}
inline position find(units text, char16_t unit) noexcept {
  return detail::locate_unit(text, static_cast<std::uint16_t>(unit), ulksFindC_16u);
}

/// The last occurrence of a string.
inline position rfind(bytes text, bytes what) noexcept { return detail::locate(text, what, ulksFindRev_8u); }
inline position rfind(units text, units what) noexcept { return detail::locate(text, what, ulksFindRev_16u); }

/// The last place of one unit.
inline position rfind(bytes text, char unit) noexcept {
  return detail::locate_unit(text, static_cast<std::uint8_t>(unit), ulksFindRevC_8u);
}
inline position rfind(units text, char16_t unit) noexcept {
  return detail::locate_unit(text, static_cast<std::uint16_t>(unit), ulksFindRevC_16u);
}

/// The first unit that belongs to a set.
inline position find_first_of(bytes text, bytes set) noexcept {
  return detail::locate(text, set, ulksFindCAny_8u);
}
inline position find_first_of(units text, units set) noexcept {
  return detail::locate(text, set, ulksFindCAny_16u);
}

/// The last unit that belongs to a set.
inline position find_last_of(bytes text, bytes set) noexcept {
  return detail::locate(text, set, ulksFindRevCAny_8u);
}
inline position find_last_of(units text, units set) noexcept {
  return detail::locate(text, set, ulksFindRevCAny_16u);
}

/// @}
/// @name Comparison
///
/// Strings of any lengths. Where one is the beginning of the other, the shorter comes first.
/// @{

namespace detail {

// Calls `work(offset, length)` for pieces of a string that a call of the library can take.
template <class Work>
void in_pieces(std::size_t length, Work work) {
  for (std::size_t at = 0; at < length;) {
    const std::size_t piece = std::min(length - at, kMaxLength);
    if (!work(at, static_cast<std::int32_t>(piece))) return;
    at += piece;
  }
}

template <class Units, class Compare>
int order(Units a, Units b, Compare compare) noexcept {
  std::int32_t difference = 0;
  in_pieces(std::min(a.size(), b.size()), [&](std::size_t at, std::int32_t length) {
    return compare(a.data() + at, b.data() + at, length, &difference) == ulkOk && difference == 0;
  });
  if (difference == 0 && a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  return difference;
}

}  // namespace detail

/// Below 0, 0 or above 0: the first string comes before the second, equals it, comes after it.
[[nodiscard]] inline int compare(bytes a, bytes b) noexcept { return detail::order(a, b, ulksCompare_8u); }
[[nodiscard]] inline int compare(units a, units b) noexcept { return detail::order(a, b, ulksCompare_16u); }

/// Whether two strings are equal.
[[nodiscard]] inline bool equal(bytes a, bytes b) noexcept {
  return a.size() == b.size() && compare(a, b) == 0;
}
[[nodiscard]] inline bool equal(units a, units b) noexcept {
  return a.size() == b.size() && compare(a, b) == 0;
}

/// As compare(), with "A" to "Z" taken for "a" to "z".
[[nodiscard]] inline int compare_ignore_case_latin(bytes a, bytes b) noexcept {
  return detail::order(a, b, ulksCompareIgnoreCaseLatin_8u);
}
[[nodiscard]] inline int compare_ignore_case_latin(units a, units b) noexcept {
  return detail::order(a, b, ulksCompareIgnoreCaseLatin_16u);
}

/// As compare(), by the lowercase of each unit.
[[nodiscard]] inline int compare_ignore_case(units a, units b) noexcept {
  return detail::order(a, b, ulksCompareIgnoreCase_16u);
}

/// @}
/// @name Case conversion
///
/// The string is converted in place: hand it over by std::move() and nothing is copied.
/// @{

namespace detail {

template <class Unit, class String, class Convert>
String converted(String string, Convert convert) noexcept {
  in_pieces(string.size(), [&](std::size_t at, std::int32_t length) {
    return convert(reinterpret_cast<Unit*>(string.data() + at), length) == ulkOk;
  });
  return string;
}

}  // namespace detail

/// A string with "A" to "Z" made "a" to "z".
[[nodiscard]] inline std::string lowercase_latin(std::string string) noexcept {
  return detail::converted<std::uint8_t>(std::move(string), ulksLowercaseLatin_8u_I);
}
[[nodiscard]] inline std::u16string lowercase_latin(std::u16string string) noexcept {
  return detail::converted<std::uint16_t>(std::move(string), ulksLowercaseLatin_16u_I);
}

/// A string with "a" to "z" made "A" to "Z".
[[nodiscard]] inline std::string uppercase_latin(std::string string) noexcept {
  return detail::converted<std::uint8_t>(std::move(string), ulksUppercaseLatin_8u_I);
}
[[nodiscard]] inline std::u16string uppercase_latin(std::u16string string) noexcept {
  return detail::converted<std::uint16_t>(std::move(string), ulksUppercaseLatin_16u_I);
}

/// A string with each unit made its lowercase; which letters have one, ulkch.h tells.
[[nodiscard]] inline std::u16string lowercase(std::u16string string) noexcept {
  return detail::converted<std::uint16_t>(std::move(string), ulksLowercase_16u_I);
}

/// A string with each unit made its uppercase.
[[nodiscard]] inline std::u16string uppercase(std::u16string string) noexcept {
  return detail::converted<std::uint16_t>(std::move(string), ulksUppercase_16u_I);
}

/// @}
/// @name Hashing
///
/// Fixed formulas, which ulkch.h gives; no protection against strings chosen to collide. Strings of more than
/// 2147483647 units are refused with #ulkErrLength.
/// @{

namespace detail {

template <class Units, class Hash>
result<std::uint32_t> hashed(Units string, Hash hash) noexcept {
  if (string.size() > kMaxLength) return failure{ulkErrLength};
  std::uint32_t value = 0;
  const ulkStatus status = hash(string.data(), static_cast<std::int32_t>(string.size()), &value);
  if (status != ulkOk) return failure{status};
  return value;
}

}  // namespace detail

inline result<std::uint32_t> hash(bytes string) noexcept { return detail::hashed(string, ulksHash_8u32u); }
inline result<std::uint32_t> hash(units string) noexcept { return detail::hashed(string, ulksHash_16u32u); }
/// Only the units before the first zero unit count.
inline result<std::uint32_t> hash_mscs(bytes string) noexcept {
  return detail::hashed(string, ulksHashMSCS_8u32u);
}
inline result<std::uint32_t> hash_mscs(units string) noexcept {
  return detail::hashed(string, ulksHashMSCS_16u32u);
}
inline result<std::uint32_t> hash_sj2(bytes string) noexcept {
  return detail::hashed(string, ulksHashSJ2_8u32u);
}
inline result<std::uint32_t> hash_sj2(units string) noexcept {
  return detail::hashed(string, ulksHashSJ2_16u32u);
}

/// @}
/// @name Trimming, splitting, joining
///
/// Trimming and splitting copy nothing: they give views into the string.
/// @{

/// A string without the units of a set at its start.
[[nodiscard]] inline std::string_view trim_start(bytes string, bytes set) noexcept {
  return string.view().substr(std::min(string.view().find_first_not_of(set.view()), string.size()));
}
[[nodiscard]] inline std::u16string_view trim_start(units string, units set) noexcept {
  return string.view().substr(std::min(string.view().find_first_not_of(set.view()), string.size()));
}

/// A string without the units of a set at its end.
[[nodiscard]] inline std::string_view trim_end(bytes string, bytes set) noexcept {
  return string.view().substr(0, string.view().find_last_not_of(set.view()) + 1);
}
[[nodiscard]] inline std::u16string_view trim_end(units string, units set) noexcept {
  return string.view().substr(0, string.view().find_last_not_of(set.view()) + 1);
}

/// A string without the units of a set at both ends.
[[nodiscard]] inline std::string_view trim(bytes string, bytes set) noexcept {
  return trim_end(trim_start(string, set), set);
}
[[nodiscard]] inline std::u16string_view trim(units string, units set) noexcept {
  return trim_end(trim_start(string, set), set);
}

/// The parts of a string between the places of one unit, found one by one as the range is gone through. As in
/// ulksSplitC_8u_D2L(): parts may be empty, but there is none after a delimiter that ends the string, and
/// none in an empty string.
template <class Units, class Char>
class [[nodiscard]] split_range {
 public:
  using view_type = std::basic_string_view<Char>;

  class iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = view_type;
    using difference_type = std::ptrdiff_t;
    using pointer = const view_type*;
    using reference = const view_type&;

    iterator() noexcept = default;
    iterator(view_type rest, Char delimiter) noexcept : rest_(rest), delimiter_(delimiter) { take(); }
    [[nodiscard]] reference operator*() const noexcept { return part_; }
    [[nodiscard]] pointer operator->() const noexcept { return &part_; }
    iterator& operator++() noexcept {
      rest_.remove_prefix(std::min(part_.size() + 1, rest_.size()));
      take();
      return *this;
    }
    iterator operator++(int) noexcept {
      const iterator before = *this;
      ++*this;
      return before;
    }
    [[nodiscard]] friend bool operator==(const iterator& a, const iterator& b) noexcept {
      return a.rest_.size() == b.rest_.size();
    }
    [[nodiscard]] friend bool operator!=(const iterator& a, const iterator& b) noexcept { return !(a == b); }

   private:
    void take() noexcept {
      std::size_t length = rest_.size();
      detail::in_pieces(rest_.size(), [&](std::size_t at, std::int32_t size) {
        const position found = find(Units(rest_.substr(at, static_cast<std::size_t>(size))), delimiter_);
        if (found) length = at + *found;
        return !found;
      });
      part_ = rest_.substr(0, length);
    }

    view_type rest_;  // from the part on
    view_type part_;
    Char delimiter_ = 0;
  };

  split_range(Units string, Char delimiter) noexcept : string_(string.view()), delimiter_(delimiter) {}
  [[nodiscard]] iterator begin() const noexcept { return {string_, delimiter_}; }
  [[nodiscard]] iterator end() const noexcept { return {string_.substr(string_.size()), delimiter_}; }

 private:
  view_type string_;
  Char delimiter_;
};

inline split_range<bytes, char> split(bytes string, char delimiter) noexcept { return {string, delimiter}; }
inline split_range<units, char16_t> split(units string, char16_t delimiter) noexcept {
  return {string, delimiter};
}

namespace detail {

template <class String, class Parts>
String joined(const Parts& parts, typename String::const_pointer delimiter) {
  std::size_t size = 0;
  for (const auto& part : parts) size += part.size() + 1;
  String whole;
  whole.reserve(size);
  bool first = true;
  for (const auto& part : parts) {
    if (delimiter && !first) whole += *delimiter;
    whole.append(part.view());
    first = false;
  }
  return whole;
}

}  // namespace detail

/// Strings one right after the other: `concat({a, "b", c})`. One allocation.
[[nodiscard]] inline std::string concat(std::initializer_list<bytes> parts) {
  return detail::joined<std::string>(parts, nullptr);
}
[[nodiscard]] inline std::u16string concat(std::initializer_list<units> parts) {
  return detail::joined<std::u16string>(parts, nullptr);
}

/// Strings with one unit between each and the next, also beside an empty string.
template <class Strings>
[[nodiscard]] std::string join(const Strings& strings, char delimiter) {
  return detail::joined<std::string>(std::vector<bytes>(std::begin(strings), std::end(strings)), &delimiter);
}
template <class Strings>
[[nodiscard]] std::u16string join(const Strings& strings, char16_t delimiter) {
  return detail::joined<std::u16string>(std::vector<units>(std::begin(strings), std::end(strings)),
                                        &delimiter);
}

/// @}
/// @name UTF conversion
///
/// Of any length, never refused: what is malformed is passed through as ulkch.h tells. The text goes through
/// a small buffer, so the result has the room that its own growth gave it, and nothing behind the text is
/// read.
/// @{

namespace detail {

// How much of the text to convert at once: the end is not inside a sequence, unless that is the text's.
inline std::size_t utf8_piece(std::string_view text, std::size_t most) noexcept {
  if (text.size() <= most) return text.size();
  std::size_t lead = most;
  while (lead > most - 4 && static_cast<unsigned char>(text[lead - 1]) < 0xC0) --lead;
  return static_cast<unsigned char>(text[lead - 1]) < 0xC0 ? most : lead - 1;
}

}  // namespace detail

/// Converts UTF-8 to UTF-16 in the machine's byte order.
[[nodiscard]] inline std::u16string to_utf16(bytes utf8) {
  constexpr std::size_t kPiece = 1024;
  std::u16string result;
  std::uint8_t piece[kPiece + 1];
  std::uint16_t converted[kPiece];  // as many units as bytes: no pair meets the end of it
  for (std::string_view rest = utf8.view(); !rest.empty();) {
    const std::size_t size = detail::utf8_piece(rest, kPiece);
    std::memcpy(piece, rest.data(), size);
    piece[size] = 0;  // ends every look behind the piece
    auto used = static_cast<std::int32_t>(size);
    auto written = static_cast<std::int32_t>(kPiece);
    if (ulksConvertUTF_8u16u(piece, &used, converted, &written, 0) != ulkOk) break;
    result.append(converted, converted + written);
    rest.remove_prefix(size);
  }
  return result;
}

/// The order of the two bytes of a 16-bit unit.
enum class byte_order : std::uint8_t { native, big_endian };

/// Converts UTF-16 to UTF-8.
[[nodiscard]] inline std::string to_utf8(units utf16, byte_order order = byte_order::native) {
  constexpr std::int32_t kRoom = 3072;
  std::string result;
  std::uint8_t converted[kRoom];
  for (std::size_t at = 0; at < utf16.size();) {
    auto used = static_cast<std::int32_t>(std::min(utf16.size() - at, detail::kMaxLength));
    std::int32_t written = kRoom;
    const std::int32_t big_endian = order == byte_order::big_endian;
    if (ulksConvertUTF_16u8u(utf16.data() + at, &used, converted, &written, big_endian) != ulkOk) break;
    result.append(reinterpret_cast<const char*>(converted), static_cast<std::size_t>(written));
    at += static_cast<std::size_t>(used);
  }
  return result;
}

/// @}

}  // namespace ulkch

#endif
