#include <gtest/gtest.h>

#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "velt/platform/Shell.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;

// A file name no shell could pass through unharmed.
constexpr const char* kHostileName = "my file \"quoted\" 'single'; $(touch pwned) `id` *.txt";

struct Launch {
  std::vector<std::string> argv;
  std::string cwd;
};

class ShellTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "velt-shell-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    Shell::Launcher([this](const std::vector<std::string>& argv, const std::string& cwd) {
      launches_.push_back({argv, cwd});
      return answer_;
    });
  }
  void TearDown() override {
    Shell::Launcher(nullptr);
    Shell::Program("");
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
  }
  std::string Create(const std::string& name, const std::string& text = "x") {
    std::ofstream(folder_ / name) << text;
    return (folder_ / name).string();
  }
  std::string Folder() const { return folder_.string(); }

  fs::path folder_;
  std::vector<Launch> launches_;
  int32_t answer_ = 42;
};

TEST_F(ShellTest, FileAndParametersReachTheOpenerUnchanged) {
  Create(kHostileName);
  const std::string parameters = "--flag 'a b' \"c\" ; rm -rf $(HOME) | cat";
  EXPECT_EQ(Shell::Execute("open", kHostileName, parameters, Folder(), 1), 42);
  ASSERT_EQ(launches_.size(), 1u);
  EXPECT_EQ(launches_[0].argv, (std::vector<std::string>{"xdg-open", kHostileName, parameters}));
  EXPECT_EQ(launches_[0].cwd, Folder());
  // Nothing was interpreted on the way.
  EXPECT_FALSE(fs::exists(folder_ / "pwned"));

  // No empty argument for empty parameters; the launcher's answer is the result.
  const std::string absolute = Create("plain.txt");
  answer_ = 33;
  EXPECT_EQ(Shell::Execute("open", absolute, "", "", 1), 33);
  ASSERT_EQ(launches_.size(), 2u);
  EXPECT_EQ(launches_[1].argv, (std::vector<std::string>{"xdg-open", absolute}));
  EXPECT_EQ(launches_[1].cwd, "");
}

TEST_F(ShellTest, OnlyTheOpenOperationIsOffered) {
  const std::string file = Create("a.txt");
  for (const char* operation : {"Open", ""})
    EXPECT_EQ(Shell::Execute(operation, file, "", "", 1), 42) << operation;
  for (const char* operation : {"print", "opens"})
    EXPECT_EQ(Shell::Execute(operation, file, "", "", 1), Shell::kNoAssociation) << operation;
  EXPECT_EQ(launches_.size(), 2u);
}

TEST_F(ShellTest, MissingFilesAndFoldersAreReportedBeforeAnythingStarts) {
  const std::string file = Create("here.txt");
  EXPECT_EQ(Shell::Execute("open", Folder() + "/not-here.txt", "", "", 1), Shell::kFileNotFound);
  EXPECT_EQ(Shell::Execute("open", file, "", Folder() + "/no-such-folder", 1),
            Shell::kPathNotFound);
  EXPECT_EQ(Shell::Execute("open", file, "", file, 1), Shell::kPathNotFound);  // not a folder
  // A relative name counts from the directory given, not from ours.
  EXPECT_EQ(Shell::Execute("open", "here.txt", "", Folder(), 1), 42);
  ASSERT_EQ(launches_.size(), 1u);
  EXPECT_EQ(launches_[0].argv[1], "here.txt");
}

TEST_F(ShellTest, AddressesAreNotCheckedAsFilesButDashedNamesAreGuarded) {
  const std::string address = "https://example.org/a b?q=$(x);y";
  EXPECT_EQ(Shell::Execute("open", address, "", "", 1), 42);
  ASSERT_EQ(launches_.size(), 1u);
  EXPECT_EQ(launches_[0].argv[1], address);
  // One letter before the colon is no scheme: checked as a file.
  EXPECT_EQ(Shell::Execute("open", "C:\\no\\such.txt", "", "", 1), Shell::kFileNotFound);
  // The opener would take a leading dash for an option of its own.
  Create("--help");
  Shell::Program("my-opener");
  EXPECT_EQ(Shell::Execute("open", "--help", "", Folder(), 1), 42);
  ASSERT_EQ(launches_.size(), 2u);
  EXPECT_EQ(launches_[1].argv, (std::vector<std::string>{"my-opener", "./--help"}));
}

// Children of this process that have ended but were not collected.
int zombieChildren() {
  int zombies = 0;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    std::ifstream stat(entry.path() / "stat");
    std::string line;
    if (!std::getline(stat, line)) continue;
    // "pid (name) state ppid ...": the name may hold spaces and parentheses.
    const auto close = line.rfind(')');
    if (close == std::string::npos) continue;
    std::istringstream rest(line.substr(close + 1));
    char state = 0;
    long parent = 0;
    rest >> state >> parent;
    if (parent == getpid() && state == 'Z') ++zombies;
  }
  return zombies;
}

template <typename Condition>
bool eventually(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < deadline) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

TEST_F(ShellTest, ARealStartRunsTheProgramInTheFolderAndCollectsItAMissingOneIsNoAssociation) {
  Shell::Launcher(nullptr);
  // cp as the opener: the copy shows file and parameters reached it intact, in the folder.
  Shell::Program("cp");
  Create(kHostileName, "content");
  const std::string copy = "copy of 'it'; $(x)";
  ASSERT_EQ(Shell::Execute("open", kHostileName, copy, Folder(), 1), Shell::kSucceeded);
  ASSERT_TRUE(eventually([&] { return fs::exists(folder_ / copy); }));
  EXPECT_TRUE(eventually([] { return zombieChildren() == 0; }));
  Shell::Program("velt-no-such-opener-program");
  EXPECT_EQ(Shell::Execute("open", Create("a.txt"), "", "", 1), Shell::kNoAssociation);
}

}  // namespace
}  // namespace velt
