#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "velt/platform/FileAttributes.hpp"
#include "velt/platform/FolderHandle.hpp"
#include "velt/platform/WildcardPattern.hpp"

namespace velt {

// One entry of a folder as the enumeration returns it.
struct DirectoryEntry {
  // The name's bytes as the file system has them (not necessarily UTF-8).
  // Valid until the enumerator moves on.
  std::string_view Name;
  // Always holds the bits the enumeration mask is about (hidden, system,
  // directory, archive); the read-only bit only once Described.
  FileAttributeSet Attributes = faNormal;
  // Whether the fields below, and the read-only bit, are filled in.
  bool Described = false;
  // Length in bytes; 0 for folders.
  int64_t Size = 0;
  // Last modification, in seconds since 1970-01-01 UTC.
  int64_t ModifiedSeconds = 0;
  // Of what the name leads to: links are followed.
  FileIdentity Identity;
};

// Enumerates the entries of an open folder whose names a wildcard pattern
// matches, with the classic attribute mask rule: an entry with hidden,
// system, volume or directory attributes is returned only when the mask
// holds every one of those it has (see EnumerationIncludes). "." and ".."
// are entries like any other (hidden folders here).
//
// Built for long scans: one read buffer per enumerator, reused for every
// folder; no allocation per entry; an entry is examined with a status call
// only when its name and the type the folder listing reports cannot decide
// (links, file systems that report no types), or when it is described.
// Entries that vanish while being read are skipped; a folder that cannot be
// read simply ends.
class DirectoryEnumerator {
 public:
  DirectoryEnumerator();
  ~DirectoryEnumerator();
  DirectoryEnumerator(const DirectoryEnumerator&) = delete;
  DirectoryEnumerator& operator=(const DirectoryEnumerator&) = delete;

  // Starts at the folder's first entry. folder and pattern must stay alive
  // and folder open while this enumeration is used.
  void Start(const FolderHandle& folder, const WildcardPattern& pattern, FileAttributeSet mask);
  // The next entry, or false at the end.
  bool Next(DirectoryEntry& entry);
  // Fills in the rest of the entry Next just returned; false when it has
  // vanished meanwhile. Error 5 for any other entry.
  bool Describe(DirectoryEntry& entry);
  // The same for the entry's name looked up in another folder instead
  // (always asks the file system).
  bool DescribeIn(const FolderHandle& folder, DirectoryEntry& entry);
  // Describes the entry called name (a C string) in folder, for an entry
  // kept after the enumeration moved on; entry.Name becomes name. False when
  // there is no such entry or the folder is closed.
  static bool DescribeNamed(const FolderHandle& folder, const char* name, DirectoryEntry& entry);

 private:
  bool refill();
  bool classify(DirectoryEntry& entry, unsigned char type);
  void checkCurrent(const DirectoryEntry& entry) const;

  std::unique_ptr<char[]> buffer_;
  size_t filled_ = 0;
  size_t read_ = 0;
  bool exhausted_ = true;
  int descriptor_ = -1;
  const WildcardPattern* pattern_ = nullptr;
  FileAttributeSet mask_ = faNormal;
  const char* currentName_ = nullptr;
};

}  // namespace velt
