#pragma once

#include <string>
#include <string_view>

namespace velt {

// Both accept "\" and "/" as separators and look for the last of either.

// The text after the last separator; without one, the path without surrounding
// spaces.
std::string FileNameOfPath(std::string_view Path);

// The text up to and including the last separator; without one, the path
// without surrounding spaces.
std::string FolderOfPath(std::string_view Path);

}  // namespace velt
