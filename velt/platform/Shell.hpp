#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace velt {

// Opens documents and addresses with the desktop's opener, the way the classic
// shell-execute call does, and answers with its classic result codes: a value
// above 32 on success, an error code of 32 or less on failure.
class Shell {
 public:
  static constexpr int32_t kSucceeded = 42;
  static constexpr int32_t kOutOfResources = 0;
  static constexpr int32_t kFileNotFound = 2;
  static constexpr int32_t kPathNotFound = 3;
  static constexpr int32_t kAccessDenied = 5;
  static constexpr int32_t kOutOfMemory = 8;
  static constexpr int32_t kNoAssociation = 31;

  // Receives the argument vector (program first) and the working folder ("" =
  // the caller's own) instead of a real start; returns what Execute returns.
  using LaunchFunction =
      std::function<int32_t(const std::vector<std::string>& argv, const std::string& cwd)>;

  // The operation "open" (any letter case; "" means open) starts the opener
  // with the file as its argument, followed by the parameters as one further
  // argument when they are not empty. No shell sees the texts, so quotes, ";"
  // or "$(...)" in them reach the program unchanged. A file that is not an
  // address ("scheme:...") must exist (kFileNotFound), relative paths counting
  // from the directory when one is given; a directory that is not an existing
  // folder gives kPathNotFound. Other operations are not offered on this
  // desktop: kNoAssociation. showCmd is accepted and ignored: how the opened
  // program shows its window is its own business here. The started program
  // runs on its own; Execute does not wait for it.
  static int32_t Execute(const std::string& operation, const std::string& file,
                         const std::string& parameters, const std::string& directory,
                         int32_t showCmd);

  // Replaces the real start (tests); an empty function restores it.
  static void Launcher(LaunchFunction launcher);

  // The opener program, looked up on PATH: "xdg-open" unless set; setting ""
  // restores that.
  static std::string Program();
  static void Program(const std::string& program);
};

}  // namespace velt
