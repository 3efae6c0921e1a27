#pragma once

// A folder tree under $TMPDIR (else /tmp), removed with everything in it.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velt::testing {

class TempTree {
 public:
  TempTree() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern = std::string(base != nullptr && *base ? base : "/tmp") + "/velt-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    // Traversable by others: some tests scan as an unprivileged user.
    ::chmod(root_.c_str(), 0755);
  }
  ~TempTree() { removeTree(root_); }
  TempTree(const TempTree&) = delete;
  TempTree& operator=(const TempTree&) = delete;

  const std::string& Root() const { return root_; }
  std::string Path(std::string_view relative) const { return root_ + "/" + std::string(relative); }

  void Folder(std::string_view relative, mode_t mode = 0755) const {
    check(::mkdir(Path(relative).c_str(), mode), "mkdir", relative);
    ::chmod(Path(relative).c_str(), mode);
  }
  void File(std::string_view relative, size_t size = 0, mode_t mode = 0644) const {
    const int fd = ::open(Path(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    check(fd, "open", relative);
    const bool sized = ::ftruncate(fd, static_cast<off_t>(size)) == 0;
    ::close(fd);
    check(sized ? 0 : -1, "ftruncate", relative);
    ::chmod(Path(relative).c_str(), mode);
  }
  // Empty files, and folders for the names ending in "/", in list order.
  void Make(std::initializer_list<std::string_view> entries) const {
    for (const auto entry : entries)
      entry.ends_with('/') ? Folder(entry.substr(0, entry.size() - 1)) : File(entry);
  }
  void Link(std::string_view relative, const std::string& target) const {
    check(::symlink(target.c_str(), Path(relative).c_str()), "symlink", relative);
  }
  void Fifo(std::string_view relative) const {
    check(::mkfifo(Path(relative).c_str(), 0644), "mkfifo", relative);
  }
  void Times(std::string_view relative, time_t accessed, time_t modified) const {
    const timespec times[2] = {{accessed, 0}, {modified, 0}};
    check(::utimensat(AT_FDCWD, Path(relative).c_str(), times, AT_SYMLINK_NOFOLLOW), "utimensat",
          relative);
  }
  void Remove(std::string_view relative) const { removeTree(Path(relative)); }

  // levels nested folders called name, an empty file in the deepest; made
  // relative to descriptors, so the whole path may exceed the path limit.
  void Chain(std::string_view relative, int levels, const std::string& name,
             const std::string& file) const {
    int fd = ::open(Path(relative).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int i = 0; i < levels && fd >= 0; ++i) {
      if (::mkdirat(fd, name.c_str(), 0755) != 0 && errno != EEXIST) break;
      const int next = ::openat(fd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      ::close(fd);
      fd = next;
    }
    check(fd, "openat in a chain", relative);
    ::close(::openat(fd, file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    ::close(fd);
  }

 private:
  // rm copes with trees deeper than the path limit; chmod unlocks locked folders.
  static void removeTree(const std::string& path) {
    const std::string quoted = "'" + path + "'";
    const std::string command = "chmod -R u+rwx " + quoted + " 2>/dev/null; rm -rf " + quoted;
    if (std::system(command.c_str()) != 0) std::perror("removing a test tree");
  }

  static void check(int result, const char* what, std::string_view relative) {
    if (result < 0)
      throw std::runtime_error(std::string(what) + " failed for " + std::string(relative));
  }

  std::string root_;
};

}  // namespace velt::testing
