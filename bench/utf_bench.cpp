// The UTF conversions beside the loop that one would write, the C library's iconv and, where it is there,
// ICU. The texts are well formed: on others the contestants differ by design.
#include <iconv.h>

#if defined(ULKCH_BENCH_ICU)
#include <unicode/ustring.h>
#endif

#include "rows.h"
#include "texts.h"
#include "ulkch.h"

namespace bench {
namespace {

// Returns the units written.
template <class From, class To>
struct Encoder {
  const char* name;  // "ulkch" for ours
  int32_t (*convert)(const From* text, int32_t length, To* destination, int32_t capacity);
};

template <class From, class To>
void addRow(const std::string& name, const std::basic_string<From>& text,
            const std::basic_string<To>& expected, const std::vector<Encoder<From, To>>& contestants) {
  for (const Encoder<From, To>& contestant : contestants) {
    const auto run = [=](benchmark::State& state) {
      std::basic_string<To> converted(text.size() * 3 + 8, To{});
      const From* source = text.data();
      To* destination = converted.data();
      const auto length = static_cast<int32_t>(text.size());
      const auto capacity = static_cast<int32_t>(converted.size());
      const int32_t written = contestant.convert(source, length, destination, capacity);
      if (converted.substr(0, static_cast<size_t>(written)) != expected) {
        anyWrong = true;
        state.SkipWithError("wrong answer");
        return;
      }
      for (auto _ : state) {
        benchmark::DoNotOptimize(source);
        benchmark::DoNotOptimize(destination);
        benchmark::DoNotOptimize(contestant.convert(source, length, destination, capacity));
        benchmark::ClobberMemory();
      }
      state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size() * sizeof(From)));
    };
    benchmark::RegisterBenchmark((name + "/" + contestant.name).c_str(), run);
  }
}

int32_t oursToWide(const Byte* text, int32_t length, Wide* destination, int32_t capacity) {
  ulksConvertUTF_8u16u(units(text), &length, units(destination), &capacity, 0);
  return capacity;
}

int32_t oursToBytes(const Wide* text, int32_t length, Byte* destination, int32_t capacity) {
  ulksConvertUTF_16u8u(units(text), &length, units(destination), &capacity, 0);
  return capacity;
}

// A loop that checks what a careful program checks: the form of a sequence, its length, the room.
int32_t loopToWide(const Byte* text, int32_t length, Wide* destination, int32_t capacity) {
  int32_t written = 0;
  const auto byte = [&](int32_t i) { return static_cast<uint32_t>(static_cast<uint8_t>(text[i])); };
  const auto follows = [&](int32_t i) { return i < length && (byte(i) & 0xC0) == 0x80; };
  for (int32_t i = 0; i < length && written < capacity;) {
    const uint32_t b = byte(i);
    if (b < 0x80) {
      destination[written++] = static_cast<Wide>(b);
      i += 1;
    } else if (b >= 0xC2 && b < 0xE0 && follows(i + 1)) {
      destination[written++] = static_cast<Wide>((b & 0x1F) << 6 | (byte(i + 1) & 0x3F));
      i += 2;
    } else if ((b & 0xF0) == 0xE0 && follows(i + 1) && follows(i + 2)) {
      const uint32_t value = (b & 0x0F) << 12 | (byte(i + 1) & 0x3F) << 6 | (byte(i + 2) & 0x3F);
      if (value < 0x800 || (value & 0xF800) == 0xD800) return 0;
      destination[written++] = static_cast<Wide>(value);
      i += 3;
    } else if ((b & 0xF8) == 0xF0 && follows(i + 1) && follows(i + 2) && follows(i + 3) &&
               written + 1 < capacity) {
      const uint32_t value =
          (b & 0x07) << 18 | (byte(i + 1) & 0x3F) << 12 | (byte(i + 2) & 0x3F) << 6 | (byte(i + 3) & 0x3F);
      if (value < 0x10000 || value > 0x10FFFF) return 0;
      destination[written++] = static_cast<Wide>(0xD7C0 + (value >> 10));
      destination[written++] = static_cast<Wide>(0xDC00 | (value & 0x3FF));
      i += 4;
    } else {
      return 0;
    }
  }
  return written;
}

int32_t loopToBytes(const Wide* text, int32_t length, Byte* destination, int32_t capacity) {
  int32_t written = 0;
  const auto put = [&](uint32_t byte) { destination[written++] = static_cast<Byte>(byte); };
  for (int32_t i = 0; i < length; ++i) {
    const uint32_t unit = text[i];
    if (unit < 0x80) {
      if (capacity - written < 1) break;
      put(unit);
    } else if (unit < 0x800) {
      if (capacity - written < 2) break;
      put(0xC0 | unit >> 6);
      put(0x80 | (unit & 0x3F));
    } else if ((unit & 0xF800) != 0xD800) {
      if (capacity - written < 3) break;
      put(0xE0 | unit >> 12);
      put(0x80 | (unit >> 6 & 0x3F));
      put(0x80 | (unit & 0x3F));
    } else {
      if (capacity - written < 4) break;
      if (unit > 0xDBFF || i + 1 == length || (text[i + 1] & 0xFC00) != 0xDC00) return 0;
      const uint32_t value = ((unit & 0x3FF) << 10 | (text[++i] & 0x3FF)) + 0x10000;
      put(0xF0 | value >> 18);
      put(0x80 | (value >> 12 & 0x3F));
      put(0x80 | (value >> 6 & 0x3F));
      put(0x80 | (value & 0x3F));
    }
  }
  return written;
}

template <class From, class To>
int32_t convertWith(iconv_t converter, const From* text, int32_t length, To* destination, int32_t capacity) {
  char* in = reinterpret_cast<char*>(const_cast<From*>(text));
  char* out = reinterpret_cast<char*>(destination);
  size_t left = static_cast<size_t>(length) * sizeof(From);
  size_t room = static_cast<size_t>(capacity) * sizeof(To);
  iconv(converter, &in, &left, &out, &room);
  return capacity - static_cast<int32_t>(room / sizeof(To));
}

int32_t iconvToWide(const Byte* text, int32_t length, Wide* destination, int32_t capacity) {
  static const iconv_t kConverter = iconv_open("UTF-16LE", "UTF-8");
  return convertWith(kConverter, text, length, destination, capacity);
}

int32_t iconvToBytes(const Wide* text, int32_t length, Byte* destination, int32_t capacity) {
  static const iconv_t kConverter = iconv_open("UTF-8", "UTF-16LE");
  return convertWith(kConverter, text, length, destination, capacity);
}

#if defined(ULKCH_BENCH_ICU)
int32_t icuToWide(const Byte* text, int32_t length, Wide* destination, int32_t capacity) {
  UErrorCode error = U_ZERO_ERROR;
  int32_t written = 0;
  u_strFromUTF8(destination, capacity, &written, text, length, &error);
  return written;
}

int32_t icuToBytes(const Wide* text, int32_t length, Byte* destination, int32_t capacity) {
  UErrorCode error = U_ZERO_ERROR;
  int32_t written = 0;
  u_strToUTF8(destination, capacity, &written, text, length, &error);
  return written;
}
#endif

// Pairs of one block, in no order.
std::u16string emoji(size_t pairs) {
  std::u16string text;
  for (size_t i = 0; i < pairs; ++i) {
    text += static_cast<Wide>(0xD83D);
    text += static_cast<Wide>(0xDE00 + i * 37 % 80);
  }
  return text;
}

}  // namespace

void addUtf() {
  const std::vector<Encoder<Byte, Wide>> toWide = {
    {"ulkch", oursToWide},
    {"loop", loopToWide},
    {"iconv", iconvToWide},
#if defined(ULKCH_BENCH_ICU)
    {"icu", icuToWide},
#endif
  };
  const std::vector<Encoder<Wide, Byte>> toBytes = {
    {"ulkch", oursToBytes},
    {"loop", loopToBytes},
    {"iconv", iconvToBytes},
#if defined(ULKCH_BENCH_ICU)
    {"icu", icuToBytes},
#endif
  };
  const auto text = [](const std::string& kind, size_t units) {
    if (kind == "ascii") return written(english(units), Script::kEnglish);
    if (kind == "latin") return written(english(units), Script::kFrench);
    if (kind == "cyrillic") return written(english(units), Script::kCyrillic);
    if (kind == "cjk") return written(english(units), Script::kChinese);
    return emoji(units / 2);
  };
  for (const char* kind : {"ascii", "latin", "cyrillic", "cjk", "emoji"}) {
    for (const size_t units : {8u, 16u, 32u, 64u, 256u, 4096u, 65536u, 524288u}) {
      const std::u16string wide = text(kind, units);
      std::string bytes(wide.size() * 3, 0);
      bytes.resize(static_cast<size_t>(loopToBytes(wide.data(), static_cast<int32_t>(wide.size()),
                                                   bytes.data(), static_cast<int32_t>(bytes.size()))));
      const std::string name = std::string(kind) + "/" + std::to_string(units);
      addRow("utf_8u16u/" + name, bytes, wide, toWide);
      addRow("utf_16u8u/" + name, wide, bytes, toBytes);
    }
  }
}

}  // namespace bench
