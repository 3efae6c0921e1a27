#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "velt/utilities/IconImage.hpp"

namespace velt {

// The icon groups of a PE file (PE32 or PE32+: Windows executables and
// libraries). Reads the DOS and PE headers, the section table and the
// resource directory (type, name, language: three fixed levels, so nothing
// can loop), and turns each icon group into the images of the icon resources
// it names (first language of each). Any structure that leaves the file or its
// section is treated as absent; a file without a usable resource directory has
// no groups.
class PeIconReader {
 public:
  static constexpr uint16_t kMaxSections = 96;

  explicit PeIconReader(std::span<const uint8_t> file);

  // Whether the bytes start like a PE file ("MZ" and a "PE" signature).
  static bool Recognizes(std::span<const uint8_t> file);

  int32_t GroupCount() const { return static_cast<int32_t>(groups_.size()); }
  // The n-th group in the file's order (0-based); empty outside the range.
  std::vector<IconImage> GroupAt(int32_t position) const;
  // The group with this numeric resource identifier; empty when there is none.
  std::vector<IconImage> GroupWithId(uint32_t id) const;

 private:
  struct Group {
    std::optional<uint32_t> id;  // none for a group known by name
    std::span<const uint8_t> directory;
  };
  struct Section {
    uint32_t virtualAddress;
    uint32_t virtualSize;
    uint32_t rawSize;
    uint32_t rawOffset;
  };

  void readHeaders();
  void readResources();
  std::span<const uint8_t> atRva(uint64_t rva, uint64_t count) const;
  std::span<const uint8_t> firstLanguageData(uint32_t entryOffset) const;
  std::vector<IconImage> imagesOf(const Group& group) const;

  std::span<const uint8_t> file_;
  std::vector<Section> sections_;
  uint32_t resourceRva_ = 0;
  uint32_t resourceSize_ = 0;
  std::vector<Group> groups_;
  std::vector<std::pair<uint32_t, std::span<const uint8_t>>> icons_;  // by identifier, ascending
};

}  // namespace velt
