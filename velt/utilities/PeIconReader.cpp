#include "velt/utilities/PeIconReader.hpp"

#include <algorithm>
#include <cstdint>

#include "velt/utilities/ByteReader.hpp"
#include "velt/utilities/IconBitmap.hpp"

namespace velt {

namespace {

constexpr uint32_t kPeSignature = 0x00004550;
constexpr uint16_t kPe32Magic = 0x10B;
constexpr uint16_t kPe32PlusMagic = 0x20B;
constexpr uint32_t kResourceDirectoryIndex = 2;
constexpr uint64_t kSectionHeaderSize = 40;
constexpr uint64_t kDirectoryHeaderSize = 16;
constexpr uint64_t kDirectoryEntrySize = 8;
constexpr uint32_t kSubdirectoryFlag = 0x80000000u;
constexpr uint32_t kNameFlag = 0x80000000u;
constexpr uint32_t kIconType = 3;
constexpr uint32_t kIconGroupType = 14;
constexpr uint64_t kGroupHeaderSize = 6;
constexpr uint64_t kGroupEntrySize = 14;

struct DirectoryEntry {
  uint32_t name;
  uint32_t target;
};

}  // namespace

bool PeIconReader::Recognizes(std::span<const uint8_t> file) {
  const ByteReader reader(file);
  return reader.U16(0) == 0x5A4D && reader.U32(reader.U32(0x3C)) == kPeSignature;
}

PeIconReader::PeIconReader(std::span<const uint8_t> file) : file_(file) {
  if (!Recognizes(file)) return;
  readHeaders();
  if (resourceSize_ != 0) readResources();
}

void PeIconReader::readHeaders() {
  const ByteReader reader(file_);
  const uint64_t pe = reader.U32(0x3C);
  const uint64_t coff = pe + 4;
  if (!reader.Has(coff, 20)) return;
  const uint16_t sectionCount = std::min(reader.U16(coff + 2), kMaxSections);
  const uint16_t optionalSize = reader.U16(coff + 16);
  const uint64_t optional = coff + 20;
  const uint16_t magic = reader.U16(optional);
  if (magic != kPe32Magic && magic != kPe32PlusMagic) return;
  const uint64_t countAt = optional + (magic == kPe32Magic ? 92 : 108);
  const uint64_t directories = countAt + 4;
  const uint64_t resourceEntry = directories + 8 * kResourceDirectoryIndex;
  if (reader.U32(countAt) <= kResourceDirectoryIndex || resourceEntry + 8 > optional + optionalSize)
    return;
  resourceRva_ = reader.U32(resourceEntry);
  resourceSize_ = reader.U32(resourceEntry + 4);
  const uint64_t table = optional + optionalSize;
  for (uint16_t i = 0; i < sectionCount; ++i) {
    const uint64_t at = table + kSectionHeaderSize * i;
    if (!reader.Has(at, kSectionHeaderSize)) break;
    sections_.push_back(
        {reader.U32(at + 12), reader.U32(at + 8), reader.U32(at + 16), reader.U32(at + 20)});
  }
}

// Bytes at a virtual address: inside one section's raw data and inside the file.
std::span<const uint8_t> PeIconReader::atRva(uint64_t rva, uint64_t count) const {
  for (const Section& section : sections_) {
    if (rva < section.virtualAddress) continue;
    const uint64_t into = rva - section.virtualAddress;
    const uint64_t extent = std::max(section.virtualSize, section.rawSize);
    if (into >= extent) continue;
    if (into > section.rawSize || count > section.rawSize - into) return {};
    return ByteReader(file_).Range(uint64_t{section.rawOffset} + into, count);
  }
  return {};
}

void PeIconReader::readResources() {
  // Offsets inside the tree count from the resource directory's start; the
  // tree is read through atRva so every structure is checked on its own. Of
  // the languages only the first is read, so the work stays linear in the
  // number of resources whatever the directories claim.
  auto directory = [this](uint32_t offset, uint32_t limit = UINT32_MAX) {
    std::vector<DirectoryEntry> entries;
    const ByteReader header(atRva(uint64_t{resourceRva_} + offset, kDirectoryHeaderSize));
    if (header.Size() == 0) return entries;
    const uint32_t count = std::min(uint32_t{header.U16(12)} + header.U16(14), limit);
    const ByteReader list(
        atRva(uint64_t{resourceRva_} + offset + kDirectoryHeaderSize, kDirectoryEntrySize * count));
    if (list.Size() == 0) return entries;
    entries.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
      entries.push_back({list.U32(kDirectoryEntrySize * i), list.U32(kDirectoryEntrySize * i + 4)});
    return entries;
  };
  for (const DirectoryEntry& type : directory(0)) {
    if ((type.name & kNameFlag) != 0 || (type.target & kSubdirectoryFlag) == 0) continue;
    if (type.name != kIconType && type.name != kIconGroupType) continue;
    for (const DirectoryEntry& item : directory(type.target & ~kSubdirectoryFlag)) {
      if ((item.target & kSubdirectoryFlag) == 0) continue;
      const auto languages = directory(item.target & ~kSubdirectoryFlag, 1);
      if (languages.empty() || (languages.front().target & kSubdirectoryFlag) != 0) continue;
      const auto data = firstLanguageData(languages.front().target);
      if (data.empty()) continue;
      const bool named = (item.name & kNameFlag) != 0;
      if (type.name == kIconGroupType)
        groups_.push_back({named ? std::nullopt : std::optional<uint32_t>(item.name), data});
      else if (!named)
        icons_.emplace_back(item.name, data);
    }
  }
  std::stable_sort(icons_.begin(), icons_.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
}

std::span<const uint8_t> PeIconReader::firstLanguageData(uint32_t entryOffset) const {
  const ByteReader entry(atRva(uint64_t{resourceRva_} + entryOffset, 16));
  if (entry.Size() == 0) return {};
  return atRva(entry.U32(0), entry.U32(4));
}

std::vector<IconImage> PeIconReader::imagesOf(const Group& group) const {
  std::vector<IconImage> images;
  const ByteReader reader(group.directory);
  const uint16_t count = reader.U16(4);
  if (reader.U16(0) != 0 || reader.U16(2) != 1 ||
      !reader.Has(kGroupHeaderSize, kGroupEntrySize * count))
    return images;
  for (uint16_t i = 0; i < count; ++i) {
    const uint32_t id = reader.U16(kGroupHeaderSize + kGroupEntrySize * i + 12);
    const auto found =
        std::lower_bound(icons_.begin(), icons_.end(), id,
                         [](const auto& icon, uint32_t key) { return icon.first < key; });
    if (found == icons_.end() || found->first != id) continue;
    if (auto image = IconBitmap::Describe(found->second)) images.push_back(*image);
  }
  return images;
}

std::vector<IconImage> PeIconReader::GroupAt(int32_t position) const {
  if (position < 0 || position >= GroupCount()) return {};
  return imagesOf(groups_[static_cast<size_t>(position)]);
}

std::vector<IconImage> PeIconReader::GroupWithId(uint32_t id) const {
  for (const Group& group : groups_)
    if (group.id == id) return imagesOf(group);
  return {};
}

}  // namespace velt
