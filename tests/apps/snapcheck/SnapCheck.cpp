// Runs the built `velt snap` (or another command of the tool) once and checks
// what it did: its exit status, its standard output against an expected file,
// its messages, the PNGs it wrote (size, and pixels against golden images), or
// that it wrote nothing at all.
//
//   velt_snap_check --velt PATH --work DIR [--command NAME] [checks] -- ARGUMENTS...
//
// DIR is emptied first and velt runs inside it, so relative file names in the
// arguments land there; its output goes to DIR.stdout and DIR.stderr.
//   --command NAME        run `velt NAME ARGUMENTS` (default: snap)
//   --stdin FILE          feed FILE to velt's standard input
//   --status N            expected exit status (default 0)
//   --stdout FILE         standard output must equal FILE
//   --stderr TEXT         standard error must contain TEXT
//   --png NAME WxH        DIR/NAME must be a PNG of that size
//   --golden NAME FILE    DIR/NAME must equal the PNG FILE pixel for pixel
//   --nothing-written     DIR must still be empty afterwards
//
// To regenerate the expected files after an intended change of looks or
// events, run the tests with VELT_UPDATE_SNAPSHOTS=1 in the environment
// (`VELT_UPDATE_SNAPSHOTS=1 ctest -R velt_snap`): --stdout and --golden files
// are then overwritten with what velt produced. Review the new files before
// committing them.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "velt/platform/Error.hpp"
#include "velt/platform/Picture.hpp"
#include "velt/platform/Png.hpp"

namespace fs = std::filesystem;

namespace {

struct GoldenCheck {
  std::string name;
  std::string file;
};

struct SizeCheck {
  std::string name;
  std::string size;
};

struct Options {
  std::string velt;
  std::string command = "snap";
  fs::path work;
  std::string stdinFile;
  int status = 0;
  std::string stdoutFile;
  std::string stderrText;
  std::vector<SizeCheck> sizes;
  std::vector<GoldenCheck> goldens;
  bool nothingWritten = false;
  std::vector<std::string> arguments;
};

int failures = 0;

void fail(const std::string& message) {
  std::cerr << "FAIL: " << message << "\n";
  ++failures;
}

bool updating() {
  const char* value = std::getenv("VELT_UPDATE_SNAPSHOTS");
  return value && std::string(value) == "1";
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

Options parseOptions(int argc, char** argv) {
  Options options;
  int i = 1;
  auto next = [&]() -> std::string {
    if (i >= argc) throw std::runtime_error(std::string(argv[i - 1]) + " needs a value");
    return argv[i++];
  };
  while (i < argc) {
    const std::string word = argv[i++];
    if (word == "--") break;
    if (word == "--velt") {
      options.velt = next();
    } else if (word == "--command") {
      options.command = next();
    } else if (word == "--work") {
      options.work = next();
    } else if (word == "--stdin") {
      options.stdinFile = next();
    } else if (word == "--status") {
      options.status = std::stoi(next());
    } else if (word == "--stdout") {
      options.stdoutFile = next();
    } else if (word == "--stderr") {
      options.stderrText = next();
    } else if (word == "--png") {
      const std::string name = next();
      options.sizes.push_back({name, next()});
    } else if (word == "--golden") {
      const std::string name = next();
      options.goldens.push_back({name, next()});
    } else if (word == "--nothing-written") {
      options.nothingWritten = true;
    } else {
      throw std::runtime_error("unknown option " + word);
    }
  }
  while (i < argc)
    options.arguments.push_back(argv[i++]);
  if (options.velt.empty() || options.work.empty())
    throw std::runtime_error("--velt and --work are required");
  return options;
}

void redirect(const std::string& path, int fd, int flags) {
  const int file = open(path.c_str(), flags, 0644);
  if (file < 0 || dup2(file, fd) < 0) _exit(127);
  close(file);
}

// Runs `velt COMMAND ARGUMENTS` in the work directory; returns its exit status.
int runVelt(const Options& options, const fs::path& out, const fs::path& err) {
  std::vector<std::string> words = {options.velt, options.command};
  words.insert(words.end(), options.arguments.begin(), options.arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words)
    argv.push_back(word.data());
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    if (chdir(options.work.c_str()) != 0) _exit(127);
    redirect(options.stdinFile.empty() ? "/dev/null" : options.stdinFile, 0, O_RDONLY);
    redirect(out, 1, O_WRONLY | O_CREAT | O_TRUNC);
    redirect(err, 2, O_WRONLY | O_CREAT | O_TRUNC);
    execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  if (waitpid(child, &status, 0) < 0) throw std::runtime_error("waitpid failed");
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void checkStdout(const Options& options, const std::string& actual) {
  if (options.stdoutFile.empty()) return;
  if (updating()) {
    std::ofstream(options.stdoutFile, std::ios::binary) << actual;
    std::cerr << "updated " << options.stdoutFile << "\n";
    return;
  }
  const std::string expected = readFile(options.stdoutFile);
  if (actual != expected)
    fail("standard output differs from " + options.stdoutFile + "\n--- expected\n" + expected +
         "--- actual\n" + actual);
}

std::shared_ptr<velt::Picture> readPng(const fs::path& path) {
  try {
    return velt::Png::Read(path.string());
  } catch (const velt::Error& error) {
    fail(path.string() + ": " + error.what());
    return nullptr;
  }
}

void checkSize(const Options& options, const SizeCheck& check) {
  const auto picture = readPng(options.work / check.name);
  if (!picture) return;
  const std::string size =
      std::to_string(picture->Width()) + "x" + std::to_string(picture->Height());
  if (size != check.size) fail(check.name + " is " + size + ", expected " + check.size);
}

void checkGolden(const Options& options, const GoldenCheck& check) {
  const fs::path actualPath = options.work / check.name;
  if (updating()) {
    fs::copy_file(actualPath, check.file, fs::copy_options::overwrite_existing);
    std::cerr << "updated " << check.file << "\n";
    return;
  }
  const auto actual = readPng(actualPath);
  const auto expected = readPng(check.file);
  if (!actual || !expected) return;
  if (actual->Width() != expected->Width() || actual->Height() != expected->Height()) {
    fail(check.name + " and " + check.file + " differ in size");
    return;
  }
  int wrong = 0;
  for (int32_t y = 0; y < actual->Height(); ++y)
    for (int32_t x = 0; x < actual->Width(); ++x)
      if (actual->Pixel(x, y) != expected->Pixel(x, y) && ++wrong == 1)
        fail(check.name + " differs from " + check.file + " first at (" + std::to_string(x) + "," +
             std::to_string(y) + ")");
  if (wrong > 0) std::cerr << wrong << " pixels differ\n";
}

int check(const Options& options) {
  fs::remove_all(options.work);
  fs::create_directories(options.work);
  const fs::path out = options.work.string() + ".stdout";
  const fs::path err = options.work.string() + ".stderr";
  const int status = runVelt(options, out, err);
  const std::string errText = readFile(err);
  if (status != options.status)
    fail("exit status " + std::to_string(status) + ", expected " + std::to_string(options.status) +
         "; standard error:\n" + errText);
  checkStdout(options, readFile(out));
  if (!options.stderrText.empty() && errText.find(options.stderrText) == std::string::npos)
    fail("standard error lacks \"" + options.stderrText + "\":\n" + errText);
  for (const SizeCheck& size : options.sizes)
    checkSize(options, size);
  for (const GoldenCheck& golden : options.goldens)
    checkGolden(options, golden);
  if (options.nothingWritten && !fs::is_empty(options.work))
    fail("files were written to " + options.work.string());
  return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return check(parseOptions(argc, argv));
  } catch (const std::exception& error) {
    std::cerr << "velt_snap_check: " << error.what() << "\n";
    return 2;
  }
}
