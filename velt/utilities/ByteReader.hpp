#pragma once

#include <cstdint>
#include <span>

namespace velt {

// Little-endian fields of bytes that came from outside. Every read checks its
// bounds in 64-bit arithmetic (no offset plus count can wrap): a field that
// does not lie wholly inside the bytes reads as 0 and a range as empty, so a
// parser checks Has() for a structure and still cannot read past it.
class ByteReader {
 public:
  explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  uint64_t Size() const { return bytes_.size(); }
  bool Has(uint64_t offset, uint64_t count) const {
    return offset <= bytes_.size() && count <= bytes_.size() - offset;
  }
  uint8_t U8(uint64_t offset) const { return Has(offset, 1) ? bytes_[offset] : 0; }
  uint16_t U16(uint64_t offset) const {
    if (!Has(offset, 2)) return 0;
    return static_cast<uint16_t>(bytes_[offset] | bytes_[offset + 1] << 8);
  }
  uint32_t U32(uint64_t offset) const {
    if (!Has(offset, 4)) return 0;
    return static_cast<uint32_t>(bytes_[offset]) | static_cast<uint32_t>(bytes_[offset + 1]) << 8 |
           static_cast<uint32_t>(bytes_[offset + 2]) << 16 |
           static_cast<uint32_t>(bytes_[offset + 3]) << 24;
  }
  int32_t I32(uint64_t offset) const { return static_cast<int32_t>(U32(offset)); }
  std::span<const uint8_t> Range(uint64_t offset, uint64_t count) const {
    return Has(offset, count) ? bytes_.subspan(offset, count) : std::span<const uint8_t>();
  }

 private:
  std::span<const uint8_t> bytes_;
};

}  // namespace velt
