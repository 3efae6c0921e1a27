#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velt {

// Names seen in one folder, compared regardless of case (case folded), so
// that the first find of a name wins. Made for scans of many folders: one
// flat table and one buffer of names, reused from folder to folder, so that
// Insert allocates only when a folder holds more names than the table.
class FoldedNameSet {
 public:
  void Clear();
  // False when a name equal to it regardless of case is in the set already.
  bool Insert(std::string_view name);

 private:
  struct Slot {
    uint64_t hash = 0;
    size_t offset = 0;
    uint32_t length = 0;
    uint32_t generation = 0;  // the slot is used when it equals generation_
  };

  char* place(std::string_view text);
  void grow();
  size_t place(uint64_t hash) const;

  std::vector<Slot> slots_;
  // The folded names back to back, from the start up to namesUsed_; slots
  // point into it.
  std::string names_;
  size_t namesUsed_ = 0;
  // A name beyond ASCII, folded.
  std::string folded_;
  uint32_t generation_ = 1;
  size_t count_ = 0;
};

}  // namespace velt
