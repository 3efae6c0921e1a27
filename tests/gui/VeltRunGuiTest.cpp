// `velt run` in a real window: the built tool runs examples/button.json on
// the X display CTest gives this program (xvfb-run), xdotool clicks its
// button, the events it prints are checked, and the picture it takes of its
// own window when closed is compared pixel for pixel with `velt run
// --headless` after the same input. Every wait is bounded.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto kPatience = std::chrono::seconds(10);
constexpr const char* kCaption = "velt button example";
// The button of examples/button.json is at (70, 35), 100 x 30.
constexpr int32_t kClickX = 100;
constexpr int32_t kClickY = 50;

std::string commandOutput(const std::string& command) {
  std::string text;
  if (FILE* pipe = popen((command + " 2>/dev/null").c_str(), "r")) {
    char buffer[256];
    while (std::fgets(buffer, sizeof buffer, pipe))
      text += buffer;
    pclose(pipe);
  }
  return text;
}

bool xdotool(const std::string& arguments) {
  return std::system(("xdotool " + arguments + " >/dev/null 2>&1").c_str()) == 0;
}

// The built tool running in the background with its standard output on a
// pipe; killed if the test leaves it running.
class VeltProcess {
 public:
  explicit VeltProcess(std::vector<std::string> arguments) {
    int fds[2];
    if (pipe(fds) != 0) throw std::runtime_error("pipe failed");
    arguments.insert(arguments.begin(), VELT_TOOL_PATH);
    pid_ = fork();
    if (pid_ < 0) throw std::runtime_error("fork failed");
    if (pid_ == 0) {
      dup2(fds[1], 1);
      close(fds[0]);
      close(fds[1]);
      std::vector<char*> argv;
      for (std::string& word : arguments)
        argv.push_back(word.data());
      argv.push_back(nullptr);
      execv(argv[0], argv.data());
      _exit(127);
    }
    close(fds[1]);
    out_ = fds[0];
    fcntl(out_, F_SETFL, fcntl(out_, F_GETFL) | O_NONBLOCK);
  }
  ~VeltProcess() {
    if (pid_ > 0) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    close(out_);
  }
  VeltProcess(const VeltProcess&) = delete;
  VeltProcess& operator=(const VeltProcess&) = delete;

  // Reads what was printed until the text appears or the patience runs out.
  bool WaitForOutput(const std::string& text) {
    const auto deadline = Clock::now() + kPatience;
    while (printed_.find(text) == std::string::npos) {
      const auto left =
          std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
      if (left.count() <= 0) return false;
      pollfd entry{out_, POLLIN, 0};
      if (poll(&entry, 1, static_cast<int>(left.count())) <= 0) return false;
      char buffer[512];
      const ssize_t got = read(out_, buffer, sizeof buffer);
      if (got <= 0) return printed_.find(text) != std::string::npos;
      printed_.append(buffer, static_cast<size_t>(got));
    }
    return true;
  }

  // Asks the tool to quit as a desktop does and waits for it; the exit
  // status, or -1 when it did not end in time.
  int Terminate() {
    kill(pid_, SIGTERM);
    const auto deadline = Clock::now() + kPatience;
    while (Clock::now() < deadline) {
      int status = 0;
      if (waitpid(pid_, &status, WNOHANG) == pid_) {
        pid_ = -1;
        WaitForOutput("\x01");  // collect the rest
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
      }
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return -1;
  }

  const std::string& Printed() const { return printed_; }

 private:
  pid_t pid_ = -1;
  int out_ = -1;
  std::string printed_;
};

// The X window with the caption, once it is shown.
std::string waitForWindow(const std::string& caption) {
  const auto deadline = Clock::now() + kPatience;
  while (Clock::now() < deadline) {
    std::string id = commandOutput("xdotool search --onlyvisible --name '^" + caption + "$'");
    if (const size_t end = id.find('\n'); end != std::string::npos) id.resize(end);
    if (!id.empty()) return id;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return {};
}

// The event names of the printed lines, each run of repeats counted once.
std::vector<std::string> eventNames(const std::string& printed, const std::string& control) {
  std::vector<std::string> names;
  std::istringstream lines(printed);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(control + ".", 0) != 0) continue;
    const std::string name = line.substr(control.size() + 1, line.find(' ') - control.size() - 1);
    if (names.empty() || names.back() != name) names.push_back(name);
  }
  return names;
}

::testing::AssertionResult samePixels(const Picture& shown, const Picture& expected) {
  if (shown.Width() != expected.Width() || shown.Height() != expected.Height())
    return ::testing::AssertionFailure()
           << "window " << shown.Width() << "x" << shown.Height() << ", headless "
           << expected.Width() << "x" << expected.Height();
  int32_t differing = 0;
  std::string first;
  for (int32_t y = 0; y < shown.Height(); ++y)
    for (int32_t x = 0; x < shown.Width(); ++x)
      if (shown.Pixel(x, y) != expected.Pixel(x, y) && differing++ == 0)
        first = "(" + std::to_string(x) + "," + std::to_string(y) + ")";
  if (differing == 0) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << differing << " pixels differ, the first at " << first;
}

class VeltRunGuiTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* display = std::getenv("DISPLAY");
    ASSERT_TRUE(display && *display)
        << "no X display: run this program under xvfb-run (CTest does so when xvfb-run is "
           "installed) or with DISPLAY set";
    ASSERT_TRUE(xdotool("version")) << "xdotool is missing (Debian package xdotool)";
    folder = fs::temp_directory_path() / ("velt-run-gui-" + std::to_string(getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);
  }
  void TearDown() override { fs::remove_all(folder); }

  fs::path folder;
  const std::string form = std::string(VELT_EXAMPLES_DIR) + "/button.json";
};

TEST_F(VeltRunGuiTest, ARealClickPrintsTheEventsInOrderAndTheWindowMatchesTheHeadlessForm) {
  const fs::path shown = folder / "window.png";
  VeltProcess velt({"run", form, "--events", "--out", shown.string()});
  const std::string window = waitForWindow(kCaption);
  ASSERT_FALSE(window.empty()) << "the window did not appear";

  ASSERT_TRUE(xdotool("mousemove --window " + window + " " + std::to_string(kClickX) + " " +
                      std::to_string(kClickY)));
  ASSERT_TRUE(velt.WaitForOutput("okButton.MouseMove")) << "no MouseMove arrived";
  ASSERT_TRUE(xdotool("click 1"));
  ASSERT_TRUE(velt.WaitForOutput("okButton.MouseUp")) << "the click did not arrive:\n"
                                                      << velt.Printed();
  std::this_thread::sleep_for(std::chrono::milliseconds(50));  // hover ticks with the pointer still
  ASSERT_EQ(velt.Terminate(), 0) << "velt run did not close cleanly";

  EXPECT_EQ(eventNames(velt.Printed(), "okButton"),
            (std::vector<std::string>{"MouseMove", "MouseDown", "Click", "MouseUp"}))
      << velt.Printed();
  EXPECT_NE(velt.Printed().find("okButton.MouseDown 1 0 30 15"), std::string::npos)
      << velt.Printed();

  // The same input, headless.
  const fs::path script = folder / "click.txt";
  std::ofstream(script) << "move " << kClickX << " " << kClickY << "\nclick " << kClickX << " "
                        << kClickY << "\nwait 50\n";
  const fs::path headless = folder / "headless.png";
  const std::string command = std::string(VELT_TOOL_PATH) + " run " + form +
                              " --headless --input " + script.string() + " --out " +
                              headless.string() + " >/dev/null";
  ASSERT_EQ(std::system(command.c_str()), 0);
  ASSERT_TRUE(fs::exists(shown)) << "velt run wrote no picture of its window";
  EXPECT_TRUE(samePixels(*Png::Read(shown.string()), *Png::Read(headless.string())));
}

}  // namespace
}  // namespace velt
