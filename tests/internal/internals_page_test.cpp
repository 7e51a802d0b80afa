// What docs/internals.md shows is what there is: programs as the compiler makes them, code as it stands in
// its file.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "support/compiled.h"
#include "support/dump.h"

namespace ulk {
namespace {

std::string contentOf(const std::string& path) {
  std::ifstream stream(std::string(ULKCH_TEST_DATA_DIR) + "/../../" + path);
  const std::string content{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_NE(content, "") << path;
  return content;
}

// The first block that is fenced with ```KIND, without the fences.
std::string blockOf(const std::string& kind) {
  const std::string page = contentOf("docs/internals.md");
  const std::string fence = "```" + kind + "\n";
  const size_t begin = page.find(fence) + fence.size();
  return page.substr(begin, page.find("```\n", begin) - begin);
}

// An expression /.../ a line, its program in the indented line below.
TEST(InternalsPage, ShowsTheProgramsThatAreMade) {
  std::istringstream block(blockOf("program"));
  std::string expression;
  std::string program;
  int compared = 0;
  for (; std::getline(block, expression) && std::getline(block, program); ++compared) {
    const size_t end = expression.rfind('/');
    ulk_test::StateBuffer compiled(expression.substr(1, end - 1), expression.substr(end + 1));
    EXPECT_EQ("  " + dump(*compiled.state()), program) << expression;
  }
  EXPECT_GT(compared, 0);
}

TEST(InternalsPage, ShowsTheProbeThatIsUsed) {
  EXPECT_NE(contentOf("src/kernels/find_unit.h").find(blockOf("cpp")), std::string::npos);
}

}  // namespace
}  // namespace ulk
