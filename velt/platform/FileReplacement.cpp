#include "velt/platform/FileReplacement.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

constexpr int kMaxNameTries = 64;

[[noreturn]] void cannotWrite(const std::string& target, int code) {
  throw Error(errPathFileAccess, target + ": cannot be written: " + std::strerror(code));
}

std::string randomSuffix() {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
  std::string suffix;
  for (int i = 0; i < 10; ++i)
    suffix += kLetters[random() % (sizeof kLetters - 1)];
  return suffix;
}

// A new file beside the target: O_EXCL refuses any name that exists, a link
// included, so nothing planted there is followed.
int createTemporary(const std::string& target, std::string& temporary) {
  const size_t slash = target.find_last_of('/');
  const std::string folder = slash == std::string::npos ? "" : target.substr(0, slash + 1);
  const std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
  for (int attempt = 0; attempt < kMaxNameTries; ++attempt) {
    temporary = folder + "." + name + "." + randomSuffix() + ".tmp";
    const int descriptor =
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (descriptor >= 0) return descriptor;
    if (errno != EEXIST) cannotWrite(target, errno);
  }
  cannotWrite(target, EEXIST);
}

}  // namespace

void ReplaceFile(const std::string& target, const std::function<void(std::FILE*)>& write) {
  if (target.empty() || target.back() == '/') cannotWrite(target, EISDIR);
  std::string temporary;
  const int descriptor = createTemporary(target, temporary);
  std::FILE* stream = ::fdopen(descriptor, "wb");
  if (!stream) {
    const int code = errno;
    ::close(descriptor);
    ::unlink(temporary.c_str());
    cannotWrite(target, code);
  }
  try {
    write(stream);
  } catch (...) {
    std::fclose(stream);
    ::unlink(temporary.c_str());
    throw;
  }
  // A failed write leaves its errno; fflush or fclose set theirs.
  const bool failed = std::fflush(stream) != 0 || std::ferror(stream) != 0;
  const int writeCode = errno != 0 ? errno : EIO;
  errno = 0;
  const bool closeFailed = std::fclose(stream) != 0;
  const int closeCode = errno != 0 ? errno : EIO;
  if (failed || closeFailed) {
    ::unlink(temporary.c_str());
    cannotWrite(target, failed ? writeCode : closeCode);
  }
  if (::rename(temporary.c_str(), target.c_str()) != 0) {
    const int code = errno;
    ::unlink(temporary.c_str());
    cannotWrite(target, code);
  }
}

}  // namespace velt
