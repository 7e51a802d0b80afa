// The texts of the rows, made anew and the same in every run.
#include <random>

#include "rows.h"

namespace bench {

std::string english(size_t units) {
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

std::string noise(size_t units, char without) {
  std::mt19937 random(21);
  std::string text;
  while (text.size() < units) {
    const char c = static_cast<char>(random() % 255 + 1);
    if (c != without) text += c;
  }
  return text;
}

}  // namespace bench
