#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velt {

// A file opened for reading that is known to be a regular file of bounded
// size. Everything read from outside comes through here: opening never blocks
// (a FIFO is refused, not waited on), devices and folders are refused, and no
// read goes past the size limit however the file grows meanwhile.
//
// Errors name the path and the system's reason: 53 no such file, 75 not a
// regular file, unreadable or larger than the limit.
class RegularFile {
 public:
  static RegularFile Open(const std::string& path, uint64_t maxBytes);
  ~RegularFile();
  RegularFile(RegularFile&& other) noexcept;
  RegularFile& operator=(RegularFile&& other) noexcept;
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  const std::string& Path() const { return path_; }
  // The size when opened.
  uint64_t Size() const { return size_; }
  // Up to count bytes from where the last read ended; fewer at the end of the
  // file. Error 75 when the file turns out larger than the limit.
  std::vector<uint8_t> Read(size_t count);
  // Everything left, within the limit.
  std::vector<uint8_t> ReadRest();

  // The whole file as text.
  static std::string ReadText(const std::string& path, uint64_t maxBytes);

 private:
  RegularFile(std::string path, int descriptor, uint64_t size, uint64_t maxBytes);

  std::string path_;
  int descriptor_ = -1;
  uint64_t size_ = 0;
  uint64_t maxBytes_ = 0;
  uint64_t consumed_ = 0;
};

}  // namespace velt
