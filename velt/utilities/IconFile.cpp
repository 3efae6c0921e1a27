#include "velt/utilities/IconFile.hpp"

#include <algorithm>
#include <array>

#include "velt/platform/Error.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/RegularFile.hpp"
#include "velt/utilities/IcoReader.hpp"
#include "velt/utilities/IconBitmap.hpp"
#include "velt/utilities/IconPicture.hpp"
#include "velt/utilities/PeIconReader.hpp"
#include "velt/utilities/SvgRenderer.hpp"

namespace velt {

namespace {

constexpr size_t kPrefixBytes = 512;
constexpr uint64_t kMaxPicturePixels = uint64_t{4096} * 4096;
constexpr std::array<uint8_t, 8> kPngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

bool endsWith(const std::string& text, const std::string& ending) {
  if (text.size() < ending.size()) return false;
  return std::equal(ending.rbegin(), ending.rend(), text.rbegin(),
                    [](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b - 'A' + 'a' : b); });
}

// An SVG document starts with markup (after a byte order mark and blanks);
// a compressed one (.svgz) is known by its name and gzip's magic.
bool looksLikeSvg(std::span<const uint8_t> prefix, bool svgName) {
  size_t at =
      prefix.size() >= 3 && prefix[0] == 0xEF && prefix[1] == 0xBB && prefix[2] == 0xBF ? 3 : 0;
  while (at < prefix.size() &&
         (prefix[at] == ' ' || prefix[at] == '\t' || prefix[at] == '\r' || prefix[at] == '\n'))
    ++at;
  if (at < prefix.size() && prefix[at] == '<') return true;
  return svgName && prefix.size() >= 2 && prefix[0] == 0x1F && prefix[1] == 0x8B;
}

IconFile::Kind kindOf(std::span<const uint8_t> prefix, bool svgName) {
  if (prefix.size() >= kPngSignature.size() &&
      std::equal(kPngSignature.begin(), kPngSignature.end(), prefix.begin()))
    return IconFile::Kind::Png;
  if (IcoReader::Recognizes(prefix)) return IconFile::Kind::Ico;
  if (prefix.size() >= 2 && prefix[0] == 'M' && prefix[1] == 'Z') return IconFile::Kind::Pe;
  if (looksLikeSvg(prefix, svgName)) return IconFile::Kind::Svg;
  return IconFile::Kind::None;
}

uint64_t limitOf(IconFile::Kind kind) {
  switch (kind) {
    case IconFile::Kind::Ico:
      return IconFile::kMaxIconBytes;
    case IconFile::Kind::Pe:
      return IconFile::kMaxExecutableBytes;
    case IconFile::Kind::Png:
      return Png::kMaxFileBytes;
    case IconFile::Kind::Svg:
      return SvgRenderer::kMaxBytes;
    case IconFile::Kind::None:
      break;
  }
  return 0;
}

std::shared_ptr<Picture> renderImages(const std::vector<IconImage>& images, int32_t side) {
  for (size_t i : IconPicture::Preference(images, side))
    if (auto picture = IconBitmap::Decode(images[i])) return IconPicture::Fit(*picture, side);
  return nullptr;
}

// The IHDR chunk first, with a size the decoder will accept.
bool pngHeaderFits(std::span<const uint8_t> bytes) {
  if (bytes.size() < 24 || bytes[12] != 'I' || bytes[13] != 'H' || bytes[14] != 'D' ||
      bytes[15] != 'R')
    return false;
  auto bigEndian = [&](size_t at) {
    return uint64_t{bytes[at]} << 24 | uint64_t{bytes[at + 1]} << 16 |
           uint64_t{bytes[at + 2]} << 8 | bytes[at + 3];
  };
  const uint64_t width = bigEndian(16), height = bigEndian(20);
  return width >= 1 && height >= 1 && width * height <= kMaxPicturePixels;
}

// A plain picture may be larger than an icon's image.
std::shared_ptr<Picture> renderPicture(std::span<const uint8_t> bytes, int32_t side) {
  try {
    return IconPicture::Fit(*Png::ReadMemory(bytes, kMaxPicturePixels), side);
  } catch (const Error&) {
    return nullptr;
  }
}

}  // namespace

IconFile IconFile::Open(const std::string& path) {
  IconFile file;
  const bool svgName = endsWith(path, ".svg") || endsWith(path, ".svgz");
  try {
    RegularFile input = RegularFile::Open(path, kMaxExecutableBytes);
    std::vector<uint8_t> bytes = input.Read(kPrefixBytes);
    file.kind_ = kindOf(bytes, svgName);
    if (file.kind_ == Kind::None || input.Size() > limitOf(file.kind_)) return IconFile();
    const std::vector<uint8_t> rest = input.ReadRest();
    if (bytes.size() + rest.size() > limitOf(file.kind_)) return IconFile();
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    file.bytes_ = std::move(bytes);
  } catch (const Error&) {
    return IconFile();
  }
  return file;
}

IconFile IconFile::FromBytes(std::vector<uint8_t> bytes, bool svgName) {
  IconFile file;
  file.kind_ = kindOf(std::span(bytes).first(std::min(bytes.size(), kPrefixBytes)), svgName);
  if (bytes.size() > limitOf(file.kind_)) file.kind_ = Kind::None;
  file.bytes_ = std::move(bytes);
  return file;
}

int32_t IconFile::Count() const {
  switch (kind_) {
    case Kind::Ico:
      return IcoReader::Images(bytes_).empty() ? 0 : 1;
    case Kind::Pe:
      return PeIconReader(bytes_).GroupCount();
    case Kind::Png:
      return pngHeaderFits(bytes_) ? 1 : 0;
    case Kind::Svg:
      return SvgRenderer::Parses(bytes_) ? 1 : 0;
    case Kind::None:
      break;
  }
  return 0;
}

std::shared_ptr<Picture> IconFile::Render(int32_t index, int32_t side) const {
  if (side < 1 || side > IconBitmap::kMaxSide) return nullptr;
  switch (kind_) {
    case Kind::Ico:
      return index == 0 ? renderImages(IcoReader::Images(bytes_), side) : nullptr;
    case Kind::Pe: {
      const PeIconReader reader(bytes_);
      return renderImages(index >= 0 ? reader.GroupAt(index)
                                     : reader.GroupWithId(static_cast<uint32_t>(-int64_t{index})),
                          side);
    }
    case Kind::Png:
      return index == 0 ? renderPicture(bytes_, side) : nullptr;
    case Kind::Svg:
      return index == 0 ? SvgRenderer::Render(bytes_, side) : nullptr;
    case Kind::None:
      break;
  }
  return nullptr;
}

}  // namespace velt
