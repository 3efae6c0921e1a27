#include "velt/platform/RegularFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

std::string kindOf(mode_t mode) {
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISCHR(mode) || S_ISBLK(mode)) return "a device";
  if (S_ISSOCK(mode)) return "a socket";
  return "not a regular file";
}

[[noreturn]] void tooLarge(const std::string& path, uint64_t maxBytes) {
  throw Error(errPathFileAccess,
              path + ": larger than the limit of " + std::to_string(maxBytes) + " bytes");
}

}  // namespace

RegularFile::RegularFile(std::string path, int descriptor, uint64_t size, uint64_t maxBytes)
    : path_(std::move(path)), descriptor_(descriptor), size_(size), maxBytes_(maxBytes) {}

RegularFile::~RegularFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

RegularFile::RegularFile(RegularFile&& other) noexcept
    : path_(std::move(other.path_)),
      descriptor_(std::exchange(other.descriptor_, -1)),
      size_(other.size_),
      maxBytes_(other.maxBytes_),
      consumed_(other.consumed_) {}

RegularFile& RegularFile::operator=(RegularFile&& other) noexcept {
  if (this != &other) {
    if (descriptor_ >= 0) ::close(descriptor_);
    path_ = std::move(other.path_);
    descriptor_ = std::exchange(other.descriptor_, -1);
    size_ = other.size_;
    maxBytes_ = other.maxBytes_;
    consumed_ = other.consumed_;
  }
  return *this;
}

RegularFile RegularFile::Open(const std::string& path, uint64_t maxBytes) {
  // Non-blocking, so that opening a FIFO with no writer returns at once.
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
  if (descriptor < 0) {
    const int code = errno;
    throw Error(code == ENOENT || code == ENOTDIR ? errFileNotFound : errPathFileAccess,
                path + ": cannot be opened: " + std::strerror(code));
  }
  RegularFile file(path, descriptor, 0, maxBytes);
  struct stat status {};
  if (::fstat(descriptor, &status) != 0)
    throw Error(errPathFileAccess, path + ": cannot be read: " + std::strerror(errno));
  if (!S_ISREG(status.st_mode))
    throw Error(errPathFileAccess, path + ": " + kindOf(status.st_mode) + ", not a regular file");
  if (static_cast<uint64_t>(status.st_size) > maxBytes) tooLarge(path, maxBytes);
  file.size_ = static_cast<uint64_t>(status.st_size);
  // Reads of a regular file do not block; the flag only mattered for open.
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  return file;
}

std::vector<uint8_t> RegularFile::Read(size_t count) {
  std::vector<uint8_t> bytes;
  const uint64_t allowed = maxBytes_ - consumed_;
  // One byte past the limit tells a file that grew beyond it.
  const size_t wanted = static_cast<size_t>(std::min<uint64_t>(count, allowed + 1));
  bytes.resize(wanted);
  size_t filled = 0;
  while (filled < wanted) {
    const ssize_t got = ::read(descriptor_, bytes.data() + filled, wanted - filled);
    if (got < 0) {
      if (errno == EINTR) continue;
      throw Error(errPathFileAccess, path_ + ": cannot be read: " + std::strerror(errno));
    }
    if (got == 0) break;
    filled += static_cast<size_t>(got);
  }
  if (filled > allowed) tooLarge(path_, maxBytes_);
  consumed_ += filled;
  bytes.resize(filled);
  return bytes;
}

std::vector<uint8_t> RegularFile::ReadRest() {
  // The size seen at opening, and then whatever more there is within the limit.
  std::vector<uint8_t> bytes = Read(static_cast<size_t>(size_ > consumed_ ? size_ - consumed_ : 0));
  for (;;) {
    const std::vector<uint8_t> more = Read(64 * 1024);
    if (more.empty()) return bytes;
    bytes.insert(bytes.end(), more.begin(), more.end());
  }
}

std::string RegularFile::ReadText(const std::string& path, uint64_t maxBytes) {
  const std::vector<uint8_t> bytes = Open(path, maxBytes).ReadRest();
  return std::string(bytes.begin(), bytes.end());
}

}  // namespace velt
