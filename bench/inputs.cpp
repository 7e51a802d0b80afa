// The texts of the rows, made anew and the same in every run.
#include <random>
#include <string_view>

#include "rows.h"

namespace bench {

namespace {

std::string drawEnglish(size_t units) {
  // Roughly by frequency: a word's chance falls with its place.
  static const char* const kWords[] = {
      "the",     "of",       "and",     "to",      "a",       "in",      "that",    "is",       "was",
      "he",      "for",      "it",      "with",    "as",      "his",     "on",      "be",       "at",
      "by",      "had",      "not",     "are",     "but",     "from",    "or",      "have",     "an",
      "they",    "which",    "one",     "you",     "were",    "her",     "all",     "she",      "there",
      "would",   "their",    "we",      "him",     "been",    "has",     "when",    "who",      "will",
      "more",    "no",       "if",      "out",     "so",      "said",    "what",    "up",       "its",
      "about",   "into",     "than",    "them",    "can",     "only",    "other",   "new",      "some",
      "could",   "time",     "these",   "two",     "may",     "then",    "do",      "first",    "any",
      "my",      "now",      "such",    "like",    "our",     "over",    "man",     "me",       "even",
      "most",    "made",     "after",   "also",    "did",     "many",    "before",  "must",     "through",
      "back",    "years",    "where",   "much",    "your",    "way",     "well",    "down",     "should",
      "because", "each",     "just",    "those",   "people",  "how",     "too",     "little",   "state",
      "good",    "very",     "make",    "world",   "still",   "own",     "see",     "men",      "work",
      "long",    "get",      "here",    "between", "both",    "life",    "being",   "under",    "never",
      "day",     "same",     "another", "know",    "while",   "last",    "might",   "great",    "old",
      "year",    "off",      "come",    "since",   "against", "go",      "came",    "right",    "used",
      "take",    "three",    "himself", "few",     "house",   "use",     "during",  "without",  "again",
      "place",   "around",   "however", "home",    "small",   "found",   "thought", "went",     "say",
      "part",    "once",     "general", "high",    "upon",    "school",  "every",   "does",     "number",
      "water",   "evening",  "harbour", "weather", "bridge",  "winter",  "journey", "question", "morning",
      "letter",  "mountain", "village", "station", "window",  "captain", "quietly", "exactly",  "jacket"};
  constexpr size_t kCount = sizeof(kWords) / sizeof(kWords[0]);
  std::mt19937 random(20);
  std::string text;
  size_t sentence = 0;
  while (text.size() < units) {
    const double place = static_cast<double>(random()) / 4294967296.0;
    std::string word = kWords[static_cast<size_t>(place * place * kCount)];
    if (sentence == 0) word[0] = static_cast<char>(word[0] - 'a' + 'A');
    text += word;
    if (++sentence > 6 && random() % 8 == 0) {
      text += ". ";
      sentence = 0;
    } else {
      text += random() % 12 == 0 ? ", " : " ";
    }
  }
  text.resize(units);
  return text;
}

}  // namespace

std::string english(size_t units) {
  static const std::string kLongest = drawEnglish(1 << 20);
  return kLongest.substr(0, units);
}

std::u16string written(const std::string& english, Script script) {
  constexpr std::string_view kVowels = "aeiou";
  std::u16string text;
  unsigned vowels = 0;
  for (const char c : english) {
    const char16_t capital = c >= 'A' && c <= 'Z' ? 1 : 0;
    const char16_t letter = static_cast<char16_t>((c | 0x20) - 'a');
    char16_t unit = static_cast<char16_t>(c);
    if (letter < 26) {
      const size_t vowel = kVowels.find(static_cast<char>(c | 0x20));
      const bool marked = vowel != std::string::npos && ++vowels % 5 == 0;
      switch (script) {
        case Script::kEnglish:
          break;
        case Script::kFrench:
          if (marked) unit = static_cast<char16_t>((capital ? 0xC8 : 0xE8) + vowel);
          break;
        case Script::kGreek:
          unit = static_cast<char16_t>((capital ? 0x391 : 0x3B1) + letter % 17);
          break;
        case Script::kCyrillic:
          unit = static_cast<char16_t>((capital ? 0x410 : 0x430) + letter);
          break;
        case Script::kVietnamese:
          if (vowel != std::string::npos)
            unit = static_cast<char16_t>(0x1EA1 - capital + 2 * (vowels * 7 % 44));
          break;
        case Script::kChinese:
          unit = static_cast<char16_t>(0x4E00 + letter * 331);
          break;
      }
    } else if (script == Script::kChinese) {
      unit = c == '.' ? 0x3002 : c == ',' ? 0xFF0C : 0x7684;
    }
    text += unit;
  }
  return text;
}

const WholeTable& wholeTable() {
  static const WholeTable kTable = [] {
    WholeTable table;
    for (int32_t unit = 0; unit < 65536; ++unit) {
      table.lower += static_cast<char16_t>(unit);
      table.upper += static_cast<char16_t>(unit);
    }
    const auto pair = [&](int32_t capital, int32_t small) {
      table.lower[static_cast<size_t>(capital)] = static_cast<char16_t>(small);
      table.upper[static_cast<size_t>(small)] = static_cast<char16_t>(capital);
    };
    for (int32_t i = 0; i < 26; ++i) pair('A' + i, 'a' + i);
    for (int32_t i = 0; i < 23; ++i) pair(0xC0 + i, 0xE0 + i);
    for (int32_t i = 0; i < 17; ++i) pair(0x391 + i, 0x3B1 + i);
    for (int32_t i = 0; i < 32; ++i) pair(0x410 + i, 0x430 + i);
    for (int32_t i = 0; i < 90; i += 2) pair(0x1EA0 + i, 0x1EA1 + i);
    return table;
  }();
  return kTable;
}

std::string noise(size_t units, char without) {
  std::mt19937 random(21);
  std::string text;
  while (text.size() < units) {
    const char c = static_cast<char>(random() % 255 + 1);
    if (c != without) text += c;
  }
  return text;
}

std::string englishLines(size_t units) {
  std::string text = english(units);
  for (size_t at = 60; at < text.size(); at = text.find(' ', at + 60)) {
    if (text[at] == ' ') text[at] = '\n';
  }
  return text;
}

std::string logLines(size_t units) {
  static const char* const kLevels[] = {"INFO", "INFO", "DEBUG", "WARN", "INFO", "ERROR"};
  uint32_t seed = 1;
  const auto random = [&seed](uint32_t below) {
    seed = seed * 1664525 + 1013904223;
    return (seed >> 8) % below;
  };
  const auto digits = [&random](const char* pattern) {
    std::string text;
    for (; *pattern; ++pattern) text += *pattern == '9' ? static_cast<char>('0' + random(10)) : *pattern;
    return text;
  };
  std::string text;
  while (text.size() < units) {
    text += digits("2019-0") + digits("9-19 19:49:19 ") + kLevels[random(6)] + digits(" [worker-9] ");
    text += random(3) ? "GET " : "POST ";
    text +=
        digits("http://www.example.com/item/99999?user=u9999&page=99 status=") + (random(4) ? "200" : "404");
    text += digits(" time=99ms \"client 9.9\" from 10.99.1.99\n");
  }
  text.resize(units);
  return text;
}

}  // namespace bench
