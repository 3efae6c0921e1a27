#pragma once

#include <cstdio>
#include <functional>
#include <string>

namespace velt {

// Writes a file so that the target holds either its old content or the whole
// new one, never a part: the content goes to a new temporary file beside the
// target (a unique name, created exclusively, never through a link), which is
// renamed over the target once it is complete. Whatever fails removes the
// temporary file and leaves the target as it was.
//
// write fills the open stream; an exception it throws passes through. A
// failure of the system is error 75 naming the target and the system's reason.
void ReplaceFile(const std::string& target, const std::function<void(std::FILE*)>& write);

}  // namespace velt
