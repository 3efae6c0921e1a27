#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "velt/platform/RegistryView.hpp"

namespace velt {

class ControlHost;

// A string value of the registry (RegistryView::Current()): the text of a
// REG_SZ, REG_EXPAND_SZ or REG_MULTI_SZ value up to its first NUL. A missing
// key or value, a value of another type or any failure of the view gives
// Default ("" when there is none); this never throws. The key opened is always
// closed.
std::string ReadRegistryString(HKEY hKey, const std::string& SubKey, const std::string& ValueName,
                               std::optional<std::string> Default = std::nullopt);

// Opens File with the shell (see Shell::Execute); false when the shell answers
// with an error code (a value below 33).
bool ShellOpen(const std::string& File, const std::string& Operation, const std::string& Parameters,
               const std::string& Directory, int32_t ShowCmd);

// The same through a control's host, so that a window system without a
// desktop records the opening instead of starting anything.
bool ShellOpen(ControlHost& host, const std::string& File, const std::string& Operation,
               const std::string& Parameters, const std::string& Directory, int32_t ShowCmd);

// The platform's Windows and system folders (see SystemFolders), without
// surrounding blanks and ending in exactly one "/".
std::string WindowsDirectory();
std::string SystemDirectory();

}  // namespace velt
