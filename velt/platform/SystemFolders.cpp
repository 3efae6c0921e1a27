#include "velt/platform/SystemFolders.hpp"

#include <mutex>
#include <utility>

namespace velt {

namespace {

constexpr const char* kDefaultWindowsDirectory = "/usr/share";
constexpr const char* kDefaultSystemDirectory = "/usr/share/icons";

struct Overrides {
  std::mutex mutex;
  std::optional<std::string> windowsDirectory;
  std::optional<std::string> systemDirectory;
};

Overrides& overrides() {
  static Overrides instance;
  return instance;
}

}  // namespace

std::string SystemFolders::WindowsDirectory() {
  Overrides& held = overrides();
  std::lock_guard<std::mutex> lock(held.mutex);
  return held.windowsDirectory.value_or(kDefaultWindowsDirectory);
}

std::string SystemFolders::SystemDirectory() {
  Overrides& held = overrides();
  std::lock_guard<std::mutex> lock(held.mutex);
  return held.systemDirectory.value_or(kDefaultSystemDirectory);
}

void SystemFolders::Override(std::optional<std::string> windowsDirectory,
                             std::optional<std::string> systemDirectory) {
  Overrides& held = overrides();
  std::lock_guard<std::mutex> lock(held.mutex);
  held.windowsDirectory = std::move(windowsDirectory);
  held.systemDirectory = std::move(systemDirectory);
}

}  // namespace velt
