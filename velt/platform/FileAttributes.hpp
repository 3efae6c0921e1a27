#pragma once

#include <cstdint>

namespace velt {

// The classic file attribute bits. A file system that has no such bits gets
// them mapped: on POSIX systems read-only means the owner may not write,
// hidden a name starting with ".", system anything that is neither a regular
// file nor a directory (nor a link to one), volume never, archive every
// regular file.
enum FileAttribute : int32_t {
  faNormal = 0,
  faReadOnly = 1,
  faHidden = 2,
  faSystem = 4,
  faVolume = 8,
  faDirectory = 16,
  faArchive = 32,
};

// A combination of FileAttribute bits.
using FileAttributeSet = int32_t;

// The attributes that keep an entry out of a directory enumeration unless the
// enumeration's mask names every one of them the entry has. Read-only and
// archive never keep an entry out.
inline constexpr FileAttributeSet kEnumerationExcludingAttributes =
    faHidden | faSystem | faVolume | faDirectory;

// Whether an enumeration with mask returns an entry with these attributes.
constexpr bool EnumerationIncludes(FileAttributeSet attributes, FileAttributeSet mask) {
  return (attributes & kEnumerationExcludingAttributes & ~mask) == 0;
}

}  // namespace velt
