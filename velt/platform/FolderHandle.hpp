#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velt {

// Where a file system object lives: two names for one folder (through a link,
// or a path and its real name) have the same identity.
struct FileIdentity {
  uint64_t Device = 0;
  uint64_t Inode = 0;

  bool operator==(const FileIdentity&) const = default;
};

// An open folder (a directory descriptor on POSIX systems). Its entries are
// enumerated and described, and its subfolders opened, relative to it: paths
// of any length work, and a parent renamed meanwhile does not matter. Links
// to folders are followed. Move-only; closes itself.
class FolderHandle {
 public:
  FolderHandle() = default;
  ~FolderHandle();
  FolderHandle(FolderHandle&& other) noexcept;
  FolderHandle& operator=(FolderHandle&& other) noexcept;
  FolderHandle(const FolderHandle&) = delete;
  FolderHandle& operator=(const FolderHandle&) = delete;

  // A closed handle when path names no folder that can be opened (missing,
  // not a folder, access refused, no descriptors left).
  static FolderHandle Open(const std::string& path);
  // A folder below this one, named by one name or a relative path ("a/b/");
  // leading "/"s count as nothing, as in a path joined to this folder's. A
  // closed handle when it cannot be opened.
  FolderHandle OpenRelative(const std::string& path) const;

  bool IsOpen() const { return descriptor_ >= 0; }
  void Close() noexcept;
  // The open folder's identity; nothing when closed or when it cannot be
  // asked.
  std::optional<FileIdentity> Identity() const;

  // The descriptor, for the platform's own enumeration code.
  int NativeHandle() const { return descriptor_; }

 private:
  friend class DirectoryEnumerator;

  explicit FolderHandle(int descriptor) : descriptor_(descriptor) {}

  int descriptor_ = -1;
  // Nothing has been read yet, so an enumeration need not rewind first (a
  // scan opens thousands of folders: the call saved adds up).
  mutable bool atStart_ = true;
};

}  // namespace velt
