#include "support/expression_cases.h"

#include <cstdlib>
#include <fstream>
#include <string_view>

namespace ulk_test {
namespace {

// A cursor over one line. Every reader moves it behind what it read and answers whether that was well-formed.
class LineReader {
 public:
  explicit LineReader(std::string_view line) : rest_(line) {}

  bool atEnd() const { return rest_.empty(); }
  bool at(char c) const { return rest_.starts_with(c); }

  bool take(std::string_view prefix) {
    if (!rest_.starts_with(prefix)) return false;
    rest_.remove_prefix(prefix.size());
    return true;
  }

  void skipBlanks() {
    while (take(" ")) continue;
  }

  // The bytes up to the next blank, and the blanks.
  std::string word() {
    const std::string taken(rest_.substr(0, rest_.find(' ')));
    rest_.remove_prefix(taken.size());
    skipBlanks();
    return taken;
  }

  bool number(int32_t* value) {
    const std::string digits(rest_.substr(0, rest_.find_first_not_of("0123456789")));
    *value = static_cast<int32_t>(std::strtol(digits.c_str(), nullptr, 10));
    rest_.remove_prefix(digits.size());
    return !digits.empty();
  }

  // /.../ up to the last slash that only letters follow, before a blank or the end of the line.
  bool slashed(std::string* bytes) {
    const auto ends = [&](size_t slash) {
      const size_t behind = rest_.find_first_not_of("abcdefghijklmnopqrstuvwxyz", slash + 1);
      return behind == rest_.npos || rest_[behind] == ' ';
    };
    size_t end = rest_.rfind('/');
    while (end != 0 && end != rest_.npos && !ends(end)) end = rest_.rfind('/', end - 1);
    if (end == 0 || end == rest_.npos) end = rest_.rfind('/');
    if (!at('/') || end == 0) return false;
    *bytes = rest_.substr(1, end - 1);
    rest_.remove_prefix(end + 1);
    return true;
  }

  bool quoted(std::string* bytes) { return take("\"") && escapedUpTo('"', bytes); }

 private:
  bool escapedUpTo(char terminator, std::string* bytes) {
    while (!rest_.empty()) {
      const char c = takeByte();
      if (c == terminator) return true;
      if (c != '\\') {
        *bytes += c;
      } else if (!escape(bytes)) {
        return false;
      }
    }
    return false;
  }

  bool escape(std::string* bytes) {
    constexpr std::string_view kNames("\\\"nrt0");
    constexpr std::string_view kBytes("\\\"\n\r\t\0", 6);
    if (rest_.empty()) return false;
    const char c = takeByte();
    if (c == 'x') return hexByte(bytes);
    if (c == '<') return repetition(bytes);
    const size_t i = kNames.find(c);
    if (i == kNames.npos) return false;
    *bytes += kBytes[i];
    return true;
  }

  bool hexByte(std::string* bytes) {
    const std::string digits(rest_.substr(0, 2));
    if (digits.size() != 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos) return false;
    rest_.remove_prefix(2);
    *bytes += static_cast<char>(std::strtol(digits.c_str(), nullptr, 16));
    return true;
  }

  bool repetition(std::string* bytes) {
    int32_t times = 0;
    std::string piece;
    if (!number(&times) || !take(":") || !escapedUpTo('>', &piece)) return false;
    for (; times > 0; --times) *bytes += piece;
    return true;
  }

  char takeByte() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }

  std::string_view rest_;
};

// What remains of the line, with single blanks.
std::string remainingWords(LineReader* line) {
  std::string words;
  for (line->skipBlanks(); !line->atEnd();) words += (words.empty() ? "" : " ") + line->word();
  return words;
}

bool readSetting(LineReader* line, Search* search) {
  bool read = false;
  int32_t value = 0;
  if (line->take("behind=")) {
    search->behind.clear();
    read = line->quoted(&search->behind);
  } else if (line->take("limit=")) {
    read = line->number(&value);
    search->limit = value;
  } else if (line->take("capacity=")) {
    read = line->number(&search->capacity);
  } else if (line->take("format=")) {
    read = line->number(&value);
    search->format = value;
  }
  line->skipBlanks();
  return read;
}

bool readSearch(LineReader line, Search* search) {
  while (!line.at('"'))
    if (!readSetting(&line, search)) return false;
  if (!line.quoted(&search->text)) return false;
  line.skipBlanks();
  if (line.word() != "=") return false;
  search->expected = remainingWords(&line);
  if (const size_t at = search->expected.rfind(" steps "); at != std::string::npos) {
    search->steps = std::stoi(search->expected.substr(at + 7));
    search->expected.resize(at);
  }
  return !search->expected.empty();
}

// A search of an expression, its program, or its error.
bool readOutcome(LineReader line, int number, Expression* expression) {
  if (line.take("=")) {
    expression->program = remainingWords(&line);
    return true;
  }
  if (line.at('e')) {
    expression->error = remainingWords(&line);
    return true;
  }
  expression->searches.push_back({.line = number});
  return readSearch(line, &expression->searches.back());
}

bool readExpression(LineReader line, int number, std::vector<Expression>* expressions) {
  Expression& expression = expressions->emplace_back();
  expression.line = number;
  if (line.at('/') ? !line.slashed(&expression.pattern) : !line.quoted(&expression.pattern)) return false;
  expression.options = line.word();
  return line.atEnd() || readOutcome(line, number, &expression);
}

bool readLine(const std::string& text, int number, std::vector<Expression>* expressions) {
  LineReader line(text);
  const bool indented = line.at(' ');
  line.skipBlanks();
  if (line.atEnd() || line.at('#')) return true;
  if (!indented) return readExpression(line, number, expressions);
  return !expressions->empty() && readOutcome(line, number, &expressions->back());
}

// The code spans of a line that begin with a slash. A row of a table writes "|" as "\|", and must hold one.
bool readPageLine(const std::string& line, int number, std::vector<Expression>* expressions) {
  std::string text = line;
  const size_t before = expressions->size();
  const bool isRow = text.starts_with("| `");
  for (size_t at = 0; isRow && (at = text.find("\\|", at)) != text.npos; ++at) text.erase(at, 1);
  for (size_t end = 0, begin = text.find('`'); begin != text.npos; begin = text.find('`', end + 1)) {
    end = text.find('`', begin + 1);
    if (end == text.npos) return false;
    const std::string_view span = std::string_view(text).substr(begin + 1, end - begin - 1);
    if (span.starts_with('/') && !readExpression(LineReader(span), number, expressions)) return false;
  }
  return !isRow || expressions->size() > before;
}

}  // namespace

ExpressionFile readExpressions(const std::string& path) {
  ExpressionFile file;
  std::ifstream stream(path, std::ios::binary);
  if (!stream) file.problem = "cannot open " + path;
  const auto read = path.ends_with(".md") ? readPageLine : readLine;
  std::string text;
  for (int number = 1; std::getline(stream, text); ++number) {
    if (text.ends_with('\r')) text.pop_back();
    if (read(text, number, &file.expressions)) continue;
    file.problem = path + ":" + std::to_string(number) + ": not understood: " + text;
    break;
  }
  return file;
}

}  // namespace ulk_test
