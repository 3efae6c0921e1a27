#pragma once

// A folder tree for file system tests, made under the temporary folder and
// removed with everything in it (also below unreadable folders and beyond
// the path length limit) when the object goes.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace velt::testing {

class TempTree {
 public:
  enum class Place {
    Temporary,  // $TMPDIR, else /tmp
    // /dev/shm when there is one: for trees of thousands of folders, which
    // some disks take seconds to remove.
    Memory,
  };

  explicit TempTree(Place place = Place::Temporary) {
    std::string pattern = baseFolder(place) + "/velt-search-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    // Traversable by others: some tests scan as an unprivileged user.
    ::chmod(root_.c_str(), 0755);
  }
  ~TempTree() { removeTree(root_); }
  TempTree(const TempTree&) = delete;
  TempTree& operator=(const TempTree&) = delete;

  // The tree's folder, without a trailing "/".
  const std::string& Root() const { return root_; }
  std::string Path(std::string_view relative) const { return root_ + "/" + std::string(relative); }

  void Folder(std::string_view relative, mode_t mode = 0755) const {
    check(::mkdir(Path(relative).c_str(), mode), "mkdir", relative);
    ::chmod(Path(relative).c_str(), mode);
  }
  void File(std::string_view relative, size_t size = 0, mode_t mode = 0644) const {
    const int fd = ::open(Path(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    check(fd, "open", relative);
    const std::string bytes(size, 'x');
    const bool written = ::write(fd, bytes.data(), bytes.size()) == static_cast<ssize_t>(size);
    ::close(fd);
    if (!written) throw std::runtime_error("write failed: " + std::string(relative));
    ::chmod(Path(relative).c_str(), mode);
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

  // levels nested folders named name below relative (which must exist), with
  // an empty file called file in the deepest; made relative to descriptors,
  // so the whole path may exceed the system's limit.
  void Chain(std::string_view relative, int levels, const std::string& name,
             const std::string& file) const {
    int fd = ::open(Path(relative).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    check(fd, "open", relative);
    for (int i = 0; i < levels; ++i) {
      if (::mkdirat(fd, name.c_str(), 0755) != 0 && errno != EEXIST) break;
      const int next = ::openat(fd, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      ::close(fd);
      fd = next;
      if (fd < 0) throw std::runtime_error("openat failed in a chain");
    }
    const int created = ::openat(fd, file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    ::close(created);
    ::close(fd);
  }

  // Removes a tree with two descriptors at most, whatever its depth:
  // descends to a folder without subfolders, empties it, climbs up through
  // "..", and removes it there.
  static void removeTree(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return;
    if (!S_ISDIR(status.st_mode)) {
      ::unlink(path.c_str());
      return;
    }
    ::chmod(path.c_str(), 0755);
    int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    std::vector<std::string> names;  // the way down from path
    while (true) {
      std::string subfolder;
      if (emptyExceptFolders(fd, subfolder)) {
        ::fchmodat(fd, subfolder.c_str(), 0755, 0);
        const int child = ::openat(fd, subfolder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(fd);
        if (child < 0) return;  // leave what cannot be reached
        fd = child;
        names.push_back(subfolder);
        continue;
      }
      if (names.empty()) break;
      const int parent = ::openat(fd, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
      ::close(fd);
      fd = parent;
      if (fd < 0) return;
      ::unlinkat(fd, names.back().c_str(), AT_REMOVEDIR);
      names.pop_back();
    }
    ::close(fd);
    ::rmdir(path.c_str());
  }

 private:
  static std::string baseFolder(Place place) {
    if (place == Place::Memory && ::access("/dev/shm", W_OK | X_OK) == 0) return "/dev/shm";
    const char* base = std::getenv("TMPDIR");
    return base != nullptr && *base != '\0' ? base : "/tmp";
  }

  static void check(int result, const char* what, std::string_view relative) {
    if (result < 0)
      throw std::runtime_error(std::string(what) + " failed for " + std::string(relative));
  }

  // Removes every entry of the folder that is not a folder; true with the
  // name of a subfolder when there is one.
  static bool emptyExceptFolders(int fd, std::string& subfolder) {
    const int listing = ::dup(fd);
    DIR* folder = ::fdopendir(listing);
    if (folder == nullptr) {
      ::close(listing);
      return false;
    }
    ::rewinddir(folder);
    while (const dirent* entry = ::readdir(folder)) {
      const std::string name = entry->d_name;
      if (name == "." || name == "..") continue;
      struct stat status {};
      if (::fstatat(fd, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
      if (S_ISDIR(status.st_mode)) {
        subfolder = name;
        break;
      }
      ::unlinkat(fd, name.c_str(), 0);
    }
    ::closedir(folder);
    return !subfolder.empty();
  }

  std::string root_;
};

}  // namespace velt::testing
