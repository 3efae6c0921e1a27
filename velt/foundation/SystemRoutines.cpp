#include "velt/foundation/SystemRoutines.hpp"

#include <exception>
#include <memory>
#include <vector>

#include "velt/platform/ControlHost.hpp"
#include "velt/platform/Shell.hpp"
#include "velt/platform/SystemFolders.hpp"

namespace velt {

namespace {

bool isStringType(uint32_t type) {
  return type == RegistryView::REG_SZ || type == RegistryView::REG_EXPAND_SZ ||
         type == RegistryView::REG_MULTI_SZ;
}

// Reads the value of an open key into `result`; leaves it alone on failure.
void readStringValue(RegistryView& view, HKEY key, const std::string& valueName,
                     std::string& result) {
  uint32_t type = RegistryView::REG_NONE;
  uint32_t size = 0;
  if (view.QueryValue(key, valueName, type, nullptr, size) != RegistryView::ERROR_SUCCESS) return;
  if (!isStringType(type)) return;
  std::vector<uint8_t> buffer(size, ' ');
  uint32_t filled = size;
  if (view.QueryValue(key, valueName, type, &buffer, filled) != RegistryView::ERROR_SUCCESS) {
    return;
  }
  if (filled < buffer.size()) buffer.resize(filled);
  std::string text(buffer.begin(), buffer.end());
  const auto nul = text.find('\0');
  if (nul != std::string::npos) text.resize(nul);
  result = std::move(text);
}

// Trimmed of blanks on both sides, with one "/" at the end.
std::string asFolder(const std::string& path) {
  const auto first = path.find_first_not_of(' ');
  std::string folder;
  if (first != std::string::npos)
    folder = path.substr(first, path.find_last_not_of(' ') - first + 1);
  if (folder.empty() || folder.back() != '/') folder += '/';
  return folder;
}

}  // namespace

std::string ReadRegistryString(HKEY hKey, const std::string& SubKey, const std::string& ValueName,
                               std::optional<std::string> Default) {
  std::string result = Default.value_or("");
  std::shared_ptr<RegistryView> view;
  HKEY key = 0;
  bool opened = false;
  // A view that fails in any way reads as a missing value.
  try {
    view = RegistryView::Current();
    opened = view->OpenKey(hKey, SubKey, key) == RegistryView::ERROR_SUCCESS;
    if (opened) readStringValue(*view, key, ValueName, result);
  } catch (const std::exception&) {
  }
  if (opened) {
    try {
      view->CloseKey(key);
    } catch (const std::exception&) {
    }
  }
  return result;
}

bool ShellOpen(const std::string& File, const std::string& Operation, const std::string& Parameters,
               const std::string& Directory, int32_t ShowCmd) {
  return Shell::Execute(Operation, File, Parameters, Directory, ShowCmd) >= 33;
}

bool ShellOpen(ControlHost& host, const std::string& File, const std::string& Operation,
               const std::string& Parameters, const std::string& Directory, int32_t ShowCmd) {
  return host.ShellExecute(Operation, File, Parameters, Directory, ShowCmd) >= 33;
}

std::string WindowsDirectory() {
  return asFolder(SystemFolders::WindowsDirectory());
}

std::string SystemDirectory() {
  return asFolder(SystemFolders::SystemDirectory());
}

}  // namespace velt
