#include "velt/platform/DirectoryEnumerator.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

// As much as the C library reads at once for readdir.
constexpr size_t kBufferSize = 32768;

bool isHiddenName(std::string_view name) {
  return !name.empty() && name.front() == '.';
}

FileAttributeSet typeAttributes(mode_t mode) {
  if (S_ISDIR(mode)) return faDirectory;
  if (S_ISREG(mode)) return faArchive;
  return faSystem;
}

// What the listing's type alone tells; faVolume (never a real attribute)
// stands for "ask the file system".
FileAttributeSet listedTypeAttributes(unsigned char type) {
  switch (type) {
    case DT_DIR:
      return faDirectory;
    case DT_REG:
      return faArchive;
    case DT_LNK:
    case DT_UNKNOWN:
      return faVolume;
    default:
      return faSystem;
  }
}

int statRetrying(int folder, const char* name, struct stat& status, int flags) {
  int result;
  do {
    result = ::fstatat(folder, name, &status, flags);
  } while (result != 0 && errno == EINTR);
  return result;
}

void fillFromStatus(DirectoryEntry& entry, const struct stat& status, bool brokenLink) {
  FileAttributeSet attributes = brokenLink ? faSystem : typeAttributes(status.st_mode);
  if (isHiddenName(entry.Name)) attributes |= faHidden;
  if ((status.st_mode & S_IWUSR) == 0) attributes |= faReadOnly;
  entry.Attributes = attributes;
  entry.Size = (attributes & faDirectory) != 0 || brokenLink ? 0 : status.st_size;
  entry.ModifiedSeconds = status.st_mtim.tv_sec;
  entry.Identity = {static_cast<uint64_t>(status.st_dev), static_cast<uint64_t>(status.st_ino)};
  entry.Described = true;
}

// Describes the name relative to the folder: what a link leads to, or the
// link itself when it leads nowhere. False when the name is gone.
bool describeName(int folder, DirectoryEntry& entry) {
  const char* name = entry.Name.data();
  struct stat status {};
  if (statRetrying(folder, name, status, 0) == 0) {
    fillFromStatus(entry, status, false);
    return true;
  }
  if (statRetrying(folder, name, status, AT_SYMLINK_NOFOLLOW) == 0) {
    fillFromStatus(entry, status, S_ISLNK(status.st_mode));
    return true;
  }
  return false;
}

}  // namespace

DirectoryEnumerator::DirectoryEnumerator() : buffer_(new char[kBufferSize]) {}

DirectoryEnumerator::~DirectoryEnumerator() = default;

void DirectoryEnumerator::Start(const FolderHandle& folder, const WildcardPattern& pattern,
                                FileAttributeSet mask) {
  descriptor_ = folder.NativeHandle();
  pattern_ = &pattern;
  mask_ = mask;
  filled_ = read_ = 0;
  currentName_ = nullptr;
  exhausted_ = descriptor_ < 0;
  // Every enumeration starts over; a folder that cannot rewind (it never
  // happens on a real folder) ends at once rather than lying.
  if (!exhausted_ && !folder.atStart_ && ::lseek(descriptor_, 0, SEEK_SET) != 0) exhausted_ = true;
  folder.atStart_ = false;
}

bool DirectoryEnumerator::refill() {
  if (exhausted_) return false;
  ssize_t count;
  do {
    count = ::getdents64(descriptor_, buffer_.get(), kBufferSize);
  } while (count < 0 && errno == EINTR);
  if (count <= 0) {
    exhausted_ = true;
    return false;
  }
  filled_ = static_cast<size_t>(count);
  read_ = 0;
  return true;
}

bool DirectoryEnumerator::Next(DirectoryEntry& entry) {
  while (read_ < filled_ || refill()) {
    const auto* record = reinterpret_cast<const dirent64*>(buffer_.get() + read_);
    read_ += record->d_reclen;
    const std::string_view name(record->d_name);
    if (!pattern_->Matches(name)) continue;
    entry = DirectoryEntry{};
    entry.Name = name;
    if (!classify(entry, record->d_type)) continue;
    currentName_ = record->d_name;
    return true;
  }
  currentName_ = nullptr;
  return false;
}

// Works out the mask attributes, asking the file system only when the
// listing cannot tell; false when the entry is not to be returned.
bool DirectoryEnumerator::classify(DirectoryEntry& entry, unsigned char type) {
  const FileAttributeSet hidden = isHiddenName(entry.Name) ? faHidden : faNormal;
  const FileAttributeSet listed = listedTypeAttributes(type);
  if (listed != faVolume) {
    entry.Attributes = listed | hidden;
    return EnumerationIncludes(entry.Attributes, mask_);
  }
  // A hidden entry the mask refuses is refused whatever it is.
  if (!EnumerationIncludes(hidden, mask_)) return false;
  return describeName(descriptor_, entry) && EnumerationIncludes(entry.Attributes, mask_);
}

void DirectoryEnumerator::checkCurrent(const DirectoryEntry& entry) const {
  if (currentName_ == nullptr || entry.Name.data() != currentName_)
    throw Error(errInvalidProcedureCall,
                "DirectoryEnumerator: only the entry Next has just returned can be described");
}

bool DirectoryEnumerator::Describe(DirectoryEntry& entry) {
  checkCurrent(entry);
  return entry.Described || describeName(descriptor_, entry);
}

bool DirectoryEnumerator::DescribeIn(const FolderHandle& folder, DirectoryEntry& entry) {
  checkCurrent(entry);
  entry.Described = false;
  return folder.IsOpen() && describeName(folder.NativeHandle(), entry);
}

bool DirectoryEnumerator::DescribeNamed(const FolderHandle& folder, const char* name,
                                        DirectoryEntry& entry) {
  entry.Name = name;
  entry.Described = false;
  return folder.IsOpen() && describeName(folder.NativeHandle(), entry);
}

}  // namespace velt
