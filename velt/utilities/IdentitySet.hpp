#pragma once

#include <cstddef>
#include <vector>

#include "velt/platform/FolderHandle.hpp"

namespace velt {

// The folders a scan has entered, by identity. One flat table: a scan
// enters thousands of folders, and a node per folder would cost an
// allocation and a cache miss each.
class IdentitySet {
 public:
  void Clear();
  // False when the identity is in the set already.
  bool Insert(const FileIdentity& identity);

 private:
  struct Slot {
    FileIdentity identity;
    bool used = false;
  };

  void grow();
  size_t place(const FileIdentity& identity) const;

  std::vector<Slot> slots_;
  size_t count_ = 0;
};

}  // namespace velt
