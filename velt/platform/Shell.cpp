#include "velt/platform/Shell.hpp"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

extern char** environ;

namespace velt {

namespace {

constexpr const char* kDefaultProgram = "xdg-open";

struct Settings {
  std::mutex mutex;
  Shell::LaunchFunction launcher;
  std::string program = kDefaultProgram;
  std::vector<pid_t> unreaped;  // children no waiter thread could be started for
};

Settings& settings() {
  static Settings instance;
  return instance;
}

bool isOpenOperation(const std::string& operation) {
  if (operation.empty()) return true;
  if (operation.size() != 4) return false;
  std::string lower;
  for (char c : operation)
    lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower == "open";
}

// "scheme:..." with a scheme of two or more characters (one letter would be a
// drive letter elsewhere): letters first, then letters, digits, "+", "-", ".".
bool isAddress(const std::string& file) {
  const auto colon = file.find(':');
  if (colon == std::string::npos || colon < 2) return false;
  if (!std::isalpha(static_cast<unsigned char>(file[0]))) return false;
  for (std::size_t i = 1; i < colon; ++i) {
    const auto c = static_cast<unsigned char>(file[i]);
    if (!std::isalnum(c) && c != '+' && c != '-' && c != '.') return false;
  }
  return true;
}

bool existsAt(const std::string& file, const std::string& directory) {
  std::filesystem::path path(file);
  if (path.is_relative() && !directory.empty()) path = std::filesystem::path(directory) / path;
  std::error_code error;
  return std::filesystem::exists(path, error);
}

bool isFolder(const std::string& directory) {
  std::error_code error;
  return std::filesystem::is_directory(directory, error);
}

int32_t resultOfSpawnError(int error) {
  switch (error) {
    case ENOENT:
      return Shell::kNoAssociation;  // no opener installed
    case EACCES:
    case EPERM:
      return Shell::kAccessDenied;
    case ENOTDIR:
      return Shell::kPathNotFound;
    case ENOMEM:
    case EAGAIN:
      return Shell::kOutOfMemory;
    default:
      return Shell::kOutOfResources;
  }
}

void reapLeftovers(Settings& held) {
  std::lock_guard<std::mutex> lock(held.mutex);
  std::erase_if(held.unreaped, [](pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; });
}

// The child is not waited for by the caller, but a child nobody waits for
// stays a zombie until the process ends. A detached thread blocked in
// waitpid() on exactly that pid collects it whenever it ends and touches no
// other child. A double fork would avoid the thread but needs fork() in a
// possibly multi-threaded process, where only async-signal-safe calls may
// follow. Should no thread be available, the pid is polled on later calls.
void reapWhenDone(pid_t pid) {
  try {
    std::thread([pid] {
      while (waitpid(pid, nullptr, 0) == -1 && errno == EINTR) {
      }
    }).detach();
  } catch (const std::system_error&) {
    Settings& held = settings();
    std::lock_guard<std::mutex> lock(held.mutex);
    held.unreaped.push_back(pid);
  }
}

class SpawnSetup {
 public:
  explicit SpawnSetup(const std::string& cwd) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    if (!cwd.empty()) posix_spawn_file_actions_addchdir_np(&actions_, cwd.c_str());
    // The opened program gets none of our open files...
    posix_spawn_file_actions_addclosefrom_np(&actions_, 3);
    // ...no blocked or ignored signals of ours, and its own session, so that
    // closing our terminal does not take it down.
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    sigset_t all;
    sigfillset(&all);
    posix_spawnattr_setsigdefault(&attributes_, &all);
    posix_spawnattr_setflags(&attributes_,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
  }
  ~SpawnSetup() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }
  SpawnSetup(const SpawnSetup&) = delete;
  SpawnSetup& operator=(const SpawnSetup&) = delete;

  const posix_spawn_file_actions_t* Actions() const { return &actions_; }
  const posix_spawnattr_t* Attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

int32_t spawnDetached(const std::vector<std::string>& argv, const std::string& cwd) {
  reapLeftovers(settings());
  std::vector<char*> arguments;
  for (const std::string& argument : argv)
    arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  SpawnSetup setup(cwd);
  pid_t pid = 0;
  const int error = posix_spawnp(&pid, arguments[0], setup.Actions(), setup.Attributes(),
                                 arguments.data(), environ);
  if (error != 0) return resultOfSpawnError(error);
  reapWhenDone(pid);
  return Shell::kSucceeded;
}

}  // namespace

int32_t Shell::Execute(const std::string& operation, const std::string& file,
                       const std::string& parameters, const std::string& directory,
                       int32_t showCmd) {
  (void)showCmd;
  if (!isOpenOperation(operation)) return kNoAssociation;
  if (!directory.empty() && !isFolder(directory)) return kPathNotFound;
  if (file.empty()) return kFileNotFound;

  std::string target = file;
  if (!isAddress(file)) {
    if (!existsAt(file, directory)) return kFileNotFound;
    // The opener would read a leading "-" as an option of its own.
    if (file.front() == '-') target = "./" + file;
  }

  LaunchFunction launcher;
  std::vector<std::string> argv;
  {
    Settings& held = settings();
    std::lock_guard<std::mutex> lock(held.mutex);
    launcher = held.launcher;
    argv.push_back(held.program);
  }
  argv.push_back(target);
  if (!parameters.empty()) argv.push_back(parameters);
  return launcher ? launcher(argv, directory) : spawnDetached(argv, directory);
}

void Shell::Launcher(LaunchFunction launcher) {
  Settings& held = settings();
  std::lock_guard<std::mutex> lock(held.mutex);
  held.launcher = std::move(launcher);
}

std::string Shell::Program() {
  Settings& held = settings();
  std::lock_guard<std::mutex> lock(held.mutex);
  return held.program;
}

void Shell::Program(const std::string& program) {
  Settings& held = settings();
  std::lock_guard<std::mutex> lock(held.mutex);
  held.program = program.empty() ? std::string(kDefaultProgram) : program;
}

}  // namespace velt
