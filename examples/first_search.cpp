// The search of first_search.c in C++: one match and its groups. Then all matches, and whether they are all.
#include <iostream>
#include <string>
#include <ulkch.hpp>

int main() {
  const std::string text = "Questions? Write to help@example.com or sales@example.org.";
  auto expression = ulkch::regexp::compile(R"((\w+)@([\w.]+\w))", "i");
  if (!expression) {
    std::cerr << ulkch::status_text(expression.status()) << " at byte " << expression.error_offset << '\n';
    return 1;
  }
  if (const auto found = expression->search(text)) {
    for (std::size_t group = 0; group < found.size(); ++group)
      std::cout << group << ": " << found[group] << '\n';
  }
  const auto all = expression->find_all(text);
  for (const auto& match : all) std::cout << match[1] << " at " << match.position() << '\n';
  return all.complete() ? 0 : 1;
}
