#include "apps/velt/RunCommand.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "apps/velt/RunOptions.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/platform/Error.hpp"

namespace velt::tool {
namespace {

namespace fs = std::filesystem;

const std::string kExamples = VELT_EXAMPLES_DIR;

constexpr const char* kTwoButtons = R"({
  "version": 1, "caption": "two", "width": 230, "height": 50,
  "controls": [
    {"type": "veltButton", "name": "left", "left": 10, "top": 10, "width": 100, "height": 30},
    {"type": "veltButton", "name": "right", "left": 120, "top": 10, "width": 100, "height": 30}
  ]
})";

// Unsets an environment variable for the life of the object, then puts it back.
struct Unset {
  explicit Unset(const char* name) : name(name) {
    if (const char* value = std::getenv(name)) saved = value;
    unsetenv(name);
  }
  ~Unset() {
    if (saved) setenv(name, saved->c_str(), 1);
  }
  const char* name;
  std::optional<std::string> saved;
};

class RunCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder = fs::temp_directory_path() /
             ("velt-run-" + std::to_string(getpid()) + "-" +
              ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  void TearDown() override { fs::remove_all(folder); }

  int run(std::vector<std::string> arguments, const std::string& input = "") {
    printed.str("");
    errors.str("");
    std::istringstream in(input);
    RunCommand command(printed, errors, in);
    return command.Run(arguments);
  }
  std::string write(const std::string& name, const std::string& text) {
    const fs::path path = folder / name;
    std::ofstream(path, std::ios::binary) << text;
    return path.string();
  }

  fs::path folder;
  std::ostringstream printed;
  std::ostringstream errors;
};

TEST_F(RunCommandTest, PropAndFocusActOnTheControlThatHasTheFocus) {
  const std::string form = write("two.json", kTwoButtons);
  const std::string saved = (folder / "saved.json").string();
  const int status = run({form, "--headless", "--input", "-", "--save", saved},
                         "prop Caption=First\n"  // no focus yet: the first control
                         "click 150 20\n"        // the right one takes the focus
                         "prop Caption=Second\n"
                         "blur\n"
                         "prop BackColor=255\n"  // still the right one, which had it last
                         "focus\n");
  ASSERT_EQ(status, 0) << errors.str();

  const FormFile file = FormFile::Load(saved, ControlRegistry::Standard());
  ASSERT_EQ(file.Controls.size(), 2u) << "the helper that took the focus was saved too";
  EXPECT_EQ(file.Controls[0].Properties.ReadProperty("Caption").ToString(), "First");
  EXPECT_EQ(file.Controls[1].Properties.ReadProperty("Caption").ToString(), "Second");
  EXPECT_EQ(file.Controls[1].Properties.ReadProperty("BackColor").ToLong(), 255);
  EXPECT_FALSE(file.Controls[0].Properties.Contains("BackColor"));
}

TEST_F(RunCommandTest, SavingWritesTheFormAndItsPicturesBesideTheNewFile) {
  const std::string saved = (folder / "copy.json").string();
  ASSERT_EQ(run({kExamples + "/showcase.json", "--headless", "--save", saved}), 0) << errors.str();
  const FormFile copy = FormFile::Load(saved, ControlRegistry::Standard());
  ASSERT_EQ(copy.ImageLists.size(), 1u);
  for (const std::string& file : copy.ImageLists[0].Files)
    EXPECT_TRUE(fs::exists(folder / file)) << file;
  ASSERT_FALSE(copy.Controls.empty());
  EXPECT_EQ(copy.Controls[0].Properties.ReadProperty("ImageIndex").ToLong(), 3);

  // Run again from the copy: the same text comes out.
  const std::string again = (folder / "again.json").string();
  ASSERT_EQ(run({saved, "--headless", "--save", again}), 0) << errors.str();
  std::ifstream first(saved);
  std::ifstream second(again);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(first), {}),
            std::string(std::istreambuf_iterator<char>(second), {}));
}

TEST_F(RunCommandTest, ABadScriptLineIsReportedBeforeAnythingRuns) {
  EXPECT_EQ(run({kExamples + "/button.json", "--headless", "--input", "-", "--events", "--out",
                 (folder / "out.png").string()},
                "move 100 50\nprop Shape=3\n"),
            2);
  EXPECT_NE(errors.str().find("line 2 \"prop Shape=3\""), std::string::npos) << errors.str();
  EXPECT_TRUE(printed.str().empty()) << "events printed before the check";
  EXPECT_TRUE(fs::is_empty(folder));
}

// A script is a regular file of bounded size or standard input: nothing that
// blocks, never ends or is no file at all.
TEST_F(RunCommandTest, AnInputThatIsNoRegularFileIsAClearError) {
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  const struct {
    std::string input, problem;
  } cases[] = {
      {folder.string(), "a folder, not a regular file"},
      {(folder / "fifo").string(), "a FIFO, not a regular file"},
      {"/dev/zero", "a device, not a regular file"},
  };
  for (const auto& bad : cases) {
    EXPECT_EQ(run({kExamples + "/button.json", "--headless", "--input", bad.input}), 2);
    EXPECT_EQ(errors.str(), "velt run: the input script " + bad.input + ": " + bad.problem + "\n");
  }
}

TEST_F(RunCommandTest, UsageMistakesAreReported) {
  EXPECT_EQ(run({}), 2);
  EXPECT_NE(errors.str().find("no form file named"), std::string::npos) << errors.str();
  EXPECT_EQ(run({"a.json", "--input", "x.txt"}), 2);
  EXPECT_NE(errors.str().find("add --headless"), std::string::npos) << errors.str();
  EXPECT_EQ(run({"--help"}), 0);
  EXPECT_NE(printed.str().find("usage: velt run"), std::string::npos);
}

TEST_F(RunCommandTest, AWindowWithoutADisplayFailsAndPointsToHeadless) {
  Unset display("DISPLAY");
  Unset wayland("WAYLAND_DISPLAY");
  EXPECT_EQ(run({kExamples + "/button.json", "--out", (folder / "out.png").string()}), 1);
  EXPECT_NE(errors.str().find("--headless"), std::string::npos) << errors.str();
  EXPECT_TRUE(fs::is_empty(folder));
}

TEST(RunOptionsTest, TakesValuesAfterAnEqualsSignOrAsTheNextArgument) {
  const RunOptions options = RunOptions::Parse(
      std::vector<std::string>{"--headless", "--out=a.png", "form.json", "--input", "s.txt",
                               "--events", "--save", "b.json"});
  EXPECT_EQ(options.Form, "form.json");
  EXPECT_TRUE(options.Events);
  EXPECT_EQ(options.Out, "a.png");
  EXPECT_EQ(options.Input, "s.txt");
  EXPECT_THROW(RunOptions::Parse(std::vector<std::string>{"f.json", "--out", "a", "--out", "b"}),
               Error);
}

}  // namespace
}  // namespace velt::tool
