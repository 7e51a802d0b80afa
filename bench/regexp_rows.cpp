// Which expression is searched for in which text. Names tell the kind of expression.
#include "regexp_rows.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "rows.h"

namespace bench {

const std::vector<Expression> kExpressions = {
    // Words and literals.
    {"literal", Text::kProse, "programmer"},
    {"literal_absent", Text::kProse, "parliament"},
    {"class_in_literal", Text::kProse, "wr[io]te"},
    {"class_repeat_before_literal", Text::kProse, "[A-Z]\\w{1,9} computer"},
    {"class_at_distance", Text::kProse, "[a-q][^u-z\\n]{13}x", kBoost},
    {"word", Text::kProse, "\\w+"},
    {"word_long", Text::kProse, "\\b\\w{12,}\\b"},
    {"capitalised", Text::kProse, "[A-Z][a-z]+"},
    {"suffix", Text::kProse, "[a-z]+ing\\b"},
    {"two_words", Text::kProse, "(\\w+)\\s+(\\w+)"},
    {"three_words", Text::kProse, "(?:\\w+ ){3}"},
    {"words_doubled", Text::kProse, "\\b(\\w+)\\s+\\1\\b", kRe2},
    {"repeated_letters", Text::kProse, "([a-z]+)\\1", kRe2},
    {"number", Text::kProse, "-?\\d+(?:[.,]\\d+)*"},
    {"uri", Text::kProse, "[a-z]+://[^\\s<>\"]+"},
    // Alternatives, in one case and in every.
    {"names", Text::kProse, "Stallman|Steele|Knuth|Ritchie|Thompson"},
    {"names_caseless", Text::kProse, "(?i)stallman|steele|knuth|ritchie|thompson"},
    {"words_near", Text::kProse, "computer.{0,25}program|program.{0,25}computer"},
    {"alternatives_group", Text::kProse, "(?:the|and|for) [a-z]+"},
    {"alternatives_bounded", Text::kProse, "\\b(?:the|and|for)\\b"},
    {"caseless_word", Text::kProse, "(?i)hacker"},
    {"caseless_bounded", Text::kProse, "(?i)\\bthe\\b"},
    // What stands around, and groups that do not give back.
    {"before_comma", Text::kProse, "\\w+(?=,)", kRe2},
    {"after_word", Text::kProse, "(?<=the )\\w+", kRe2},
    {"not_before", Text::kProse, "\\bhack(?!er)\\w*", kRe2},
    {"not_after", Text::kProse, "(?<!the )\\bcomputer", kRe2},
    {"between_braces", Text::kProse, "(?<=\\{)[^}]*(?=\\})", kRe2},
    {"atomic_words", Text::kProse, "(?>\\w+)-(?>\\w+)", kRe2},
    {"sentence_lazy", Text::kProse, "[A-Z].*?\\."},
    // Lines of a web server.
    {"pairs", Text::kLog, "(\\w+)=(\\w+)"},
    {"pairs_or_end", Text::kLog, "((\\w+)=(\\w+)|\\z)"},
    {"quoted", Text::kLog, "\"([^\"]*)\""},
    {"bracketed_lazy", Text::kLog, "\\[.*?\\]"},
    {"date", Text::kLog, "(\\d+)-(\\d+)-(\\d+)"},
    {"time_stamp", Text::kLog, "\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}"},
    {"address", Text::kLog, "\\b\\d{1,3}(?:\\.\\d{1,3}){3}\\b"},
    {"address_strict", Text::kLog,
     "\\b(?:(?:25[0-5]|2[0-4]\\d|1?\\d?\\d)\\.){3}(?:25[0-5]|2[0-4]\\d|1?\\d?\\d)\\b"},
    {"url", Text::kLog, "https?://[^ ]+"},
    {"request", Text::kLog, "(?:GET|POST) ([^ ?]+)(?:\\?(\\S*))?"},
    {"levels", Text::kLog, "ERROR|WARN"},
    {"line_fields", Text::kLog, "^(\\S+) (\\S+) (ERROR|WARN) .*$"},
    {"line_end", Text::kLog, "\\S+$"},
    {"status", Text::kLog, "status=(?!200)\\d+", kRe2},
    // Source.
    {"comment", Text::kSource, "/\\*.*?\\*/"},
    {"comment_of_lines", Text::kSource, "(?s)/\\*.*?\\*/"},
    {"comment_to_end", Text::kSource, "//[^\\n]*"},
    {"call", Text::kSource, "[A-Za-z_]\\w*\\("},
    {"hex", Text::kSource, "0[xX][0-9a-fA-F]+"},
    {"define", Text::kSource, "^#define\\s+(\\w+)\\s+(.*)$"},
    {"string_escaped", Text::kSource, "\"(?:[^\"\\\\\\n]|\\\\.)*\""},
    // A changelog.
    {"mail", Text::kChangelog, "[\\w.+-]+@[\\w-]+\\.[\\w.-]+"},
    {"author", Text::kChangelog, "^(\\d+-\\d+-\\d+)  (.+)  <([^>]+)>$"},
    {"list_repeated", Text::kChangelog, "\\((\\w+(?:, \\w+)*)\\):"},
    // Beyond ASCII.
    {"letters", Text::kManual, "\\p{L}+", kBoost},
    {"capital_letters", Text::kManual, "\\p{Lu}", kBoost},
    {"cyrillic", Text::kManual, "\\p{Cyrillic}+", kBoost},
    {"greek", Text::kManual, "\\p{Greek}", kBoost},
    {"cyrillic_class", Text::kManual, "[а-яё]{8,}", kBoost},
    {"cyrillic_alternatives", Text::kManual, "[Сс]истем|[Пп]роцесс", kBoost},
    {"dots", Text::kManual, "для.{1,30}файл", kBoost},
    {"font_lazy", Text::kManual, "\\\\f[BI](.*?)\\\\fP"},
};

namespace {

bool continues(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

void cut(std::string& text, size_t bytes) {
  if (text.size() <= bytes) return;
  while (bytes > 0 && continues(text[bytes])) --bytes;
  text.resize(bytes);
}

std::string found(const char* name) {
#ifdef ULKCH_BENCH_TEXTS
  std::ifstream file(std::string(ULKCH_BENCH_TEXTS "/") + name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
#else
  static_cast<void>(name);
  return {};
#endif
}

}  // namespace

std::shared_ptr<const std::string> textOf(Text kind, size_t bytes) {
  static const char* const kFiles[] = {nullptr, "prose", "source", "manual", "changelog"};
  std::string text = kind == Text::kLog ? logLines(bytes) : found(kFiles[static_cast<int>(kind)]);
  cut(text, bytes);
  return std::make_shared<const std::string>(std::move(text));
}

std::vector<std::string> shortLines(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0, end = 0; lines.size() < 500 && (end = text.find('\n', at)) != std::string::npos;
       at = end + 1) {
    if (end == at) continue;
    lines.push_back(text.substr(at, end - at));
    cut(lines.back(), 80);
  }
  return lines;
}

}  // namespace bench
