#include "velt/platform/FolderHandle.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace velt {

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOCTTY;

int openRetrying(int parent, const char* path) {
  int descriptor;
  do {
    descriptor = ::openat(parent, path, kFolderFlags);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor;
}

}  // namespace

FolderHandle::~FolderHandle() {
  Close();
}

FolderHandle::FolderHandle(FolderHandle&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), atStart_(other.atStart_) {}

FolderHandle& FolderHandle::operator=(FolderHandle&& other) noexcept {
  if (this != &other) {
    Close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    atStart_ = other.atStart_;
  }
  return *this;
}

FolderHandle FolderHandle::Open(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos) return FolderHandle();
  return FolderHandle(openRetrying(AT_FDCWD, path.c_str()));
}

FolderHandle FolderHandle::OpenRelative(const std::string& path) const {
  const size_t start = path.find_first_not_of('/');
  if (!IsOpen() || start == std::string::npos || path.find('\0') != std::string::npos)
    return FolderHandle();
  return FolderHandle(openRetrying(descriptor_, path.c_str() + start));
}

void FolderHandle::Close() noexcept {
  // close() is not retried on EINTR: on Linux the descriptor is gone anyway.
  if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
}

std::optional<FileIdentity> FolderHandle::Identity() const {
  struct stat status {};
  if (!IsOpen() || ::fstat(descriptor_, &status) != 0) return std::nullopt;
  return FileIdentity{static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino)};
}

}  // namespace velt
