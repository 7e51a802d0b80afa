// What docs/internals.md shows is what there is: programs as the compiler makes them, code as it stands in
// its file.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "regexp/state.h"
#include "support/dump.h"

namespace ulk {
namespace {

std::string programOf(const std::string& pattern, const std::string& options) {
  int32_t size = 0;
  int32_t offset = 0;
  ulksRegExpGetSize(pattern.c_str(), &size);
  std::vector<uint64_t> buffer(static_cast<size_t>(size) / sizeof(uint64_t) + 1);
  auto* const state = reinterpret_cast<ulkRegExpState*>(buffer.data());
  EXPECT_EQ(ulksRegExpInit(pattern.c_str(), options.c_str(), state, &offset), ulkOk);
  return dump(*state);
}

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
    EXPECT_EQ("  " + programOf(expression.substr(1, end - 1), expression.substr(end + 1)), program)
        << expression;
  }
  EXPECT_GT(compared, 0);
}

TEST(InternalsPage, ShowsTheProbeThatIsUsed) {
  EXPECT_NE(contentOf("src/kernels/find_unit.h").find(blockOf("cpp")), std::string::npos);
}

}  // namespace
}  // namespace ulk
