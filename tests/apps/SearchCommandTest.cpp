#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "apps/velt/SearchCommand.hpp"

namespace velt::tool {
namespace {

namespace fs = std::filesystem;

class SearchCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() /
            ("velt-search-command-" +
             std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
             ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root_);
    fs::create_directories(root_ / "sub");
    write(root_ / "a.txt", "12345");
    write(root_ / "b.log", "1");
    write(root_ / "sub" / "c.txt", "123");
  }
  void TearDown() override { fs::remove_all(root_); }

  static void write(const fs::path& path, const std::string& text) { std::ofstream(path) << text; }

  int run(std::vector<std::string> arguments) {
    out_.str("");
    err_.str("");
    return SearchCommand(out_, err_).Run(arguments);
  }

  // Each result line: Path, Filename, DateTime, attributes, Size, by tabs.
  std::vector<std::vector<std::string>> rows() const {
    std::vector<std::vector<std::string>> result;
    std::istringstream lines(out_.str());
    for (std::string line; std::getline(lines, line);) {
      std::vector<std::string> fields;
      std::istringstream parts(line);
      for (std::string field; std::getline(parts, field, '\t');)
        fields.push_back(field);
      result.push_back(fields);
    }
    return result;
  }

  fs::path root_;
  std::ostringstream out_;
  std::ostringstream err_;
};

TEST_F(SearchCommandTest, PrintsOneTabSeparatedLinePerFileFound) {
  ASSERT_EQ(run({root_.string(), "*.txt"}), SearchCommand::kOk) << err_.str();
  const auto found = rows();
  ASSERT_EQ(found.size(), 1u) << out_.str();
  ASSERT_EQ(found[0].size(), 5u) << out_.str();
  EXPECT_EQ(found[0][3], "32");  // a regular file: archive
  EXPECT_EQ(found[0][4], "5");
}

TEST_F(SearchCommandTest, RecursiveScansFindFilesBelowAndFolders) {
  ASSERT_EQ(run({root_.string(), "*.txt", "--recursive"}), SearchCommand::kOk) << err_.str();
  std::vector<std::string> names;
  for (const auto& row : rows())
    names.push_back(row.at(1));
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, (std::vector<std::string>{"a.txt", "c.txt"}));

  ASSERT_EQ(run({root_.string(), "*", "--dirs"}), SearchCommand::kOk) << err_.str();
  const auto folders = rows();
  ASSERT_EQ(folders.size(), 1u) << out_.str();
  EXPECT_EQ(folders[0].at(1), "sub");
  EXPECT_EQ(folders[0].at(3), "16");
}

// The fields of a line stay apart whatever a name holds.
TEST_F(SearchCommandTest, TabsLineFeedsAndBackslashesInNamesAreEscaped) {
  write(root_ / "sub" / "t\tn\nb\\.txt", "");
  ASSERT_EQ(run({(root_ / "sub").string(), "t*"}), SearchCommand::kOk) << err_.str();
  const auto found = rows();
  ASSERT_EQ(found.size(), 1u) << out_.str();
  ASSERT_EQ(found[0].size(), 5u) << out_.str();
  EXPECT_EQ(found[0][1], "t\\tn\\nb\\\\.txt");
}

// An empty result is the search's answer; the user is told why on stderr.
TEST_F(SearchCommandTest, AStartFolderThatCannotBeSearchedIsNamedOnStandardError) {
  const std::string missing = (root_ / "none").string();
  const std::string file = (root_ / "a.txt").string();
  const struct {
    std::vector<std::string> arguments;
    std::string message;
  } cases[] = {
      {{missing, "*"}, "velt search: " + missing + ": no such folder\n"},
      {{file, "*", "--recursive"}, "velt search: " + file + ": not a folder\n"},
      {{missing + ";" + file, "--recursive", "--dirs"},
       "velt search: " + missing + ": no such folder\nvelt search: " + file + ": not a folder\n"},
  };
  for (const auto& bad : cases) {
    EXPECT_EQ(run(bad.arguments), SearchCommand::kOk);
    EXPECT_EQ(err_.str(), bad.message);
    EXPECT_EQ(out_.str(), "");
  }
  ASSERT_EQ(run({root_.string(), "*"}), SearchCommand::kOk);
  EXPECT_EQ(err_.str(), "");
}

TEST_F(SearchCommandTest, BadUsageIsStatusTwoWithAMessage) {
  EXPECT_EQ(run({root_.string()}), SearchCommand::kBadInput);
  EXPECT_NE(err_.str().find("pattern"), std::string::npos) << err_.str();
  EXPECT_EQ(run({root_.string(), "*", "--attr", "x"}), SearchCommand::kBadInput);
  EXPECT_NE(err_.str().find("--attr"), std::string::npos) << err_.str();
  EXPECT_EQ(out_.str(), "");
}

}  // namespace
}  // namespace velt::tool
