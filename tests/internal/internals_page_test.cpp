// What docs/internals.md shows is what there is: programs as the compiler makes them, code as it stands in
// its file.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

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

TEST(InternalsPage, ShowsWhatThereIs) {
  EXPECT_NE(contentOf("tests/data/programs.txt").find(blockOf("program")), std::string::npos);
  EXPECT_NE(contentOf("src/kernels/find_unit.h").find(blockOf("cpp")), std::string::npos);
}

}  // namespace
}  // namespace ulk
