#include "velt/platform/Png.hpp"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

#include "velt/platform/Error.hpp"
#include "velt/platform/FileReplacement.hpp"
#include "velt/platform/RegularFile.hpp"

namespace velt {

namespace {

// libpng reports errors by longjmp back to the setjmp in readHeader, readPixels
// or writeImage. Those frames and everything libpng calls back into hold plain
// data only, so the jump never skips a C++ destructor; the C++ side (buffers,
// the guards that free libpng's structures) lives in the callers.

struct ErrorText {
  char text[192];
};

struct MemorySource {
  const uint8_t* data;
  size_t size;
  size_t position;
  ErrorText error;
};

struct Header {
  png_uint_32 width;
  png_uint_32 height;
  size_t fileRowBytes;
};

[[noreturn]] void onError(png_structp png, png_const_charp message) {
  auto* error = static_cast<ErrorText*>(png_get_error_ptr(png));
  std::snprintf(error->text, sizeof error->text, "%s", message ? message : "unknown error");
  png_longjmp(png, 1);
}

void onWarning(png_structp, png_const_charp) {}

void readFromMemory(png_structp png, png_bytep out, size_t length) {
  auto* source = static_cast<MemorySource*>(png_get_io_ptr(png));
  if (length > source->size - source->position) png_error(png, "the data ends early");
  std::memcpy(out, source->data + source->position, length);
  source->position += length;
}

bool readHeader(png_structp png, png_infop info, Header* header) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_read_info(png, info);
  header->width = png_get_image_width(png, info);
  header->height = png_get_image_height(png, info);
  header->fileRowBytes = png_get_rowbytes(png, info);
  return true;
}

// Every colour type and depth becomes 8-bit RGBA.
void requestRgba(png_structp png, png_infop info) {
  const int colorType = png_get_color_type(png, info);
  const int bitDepth = png_get_bit_depth(png, info);
  const bool hasTransparency = png_get_valid(png, info, PNG_INFO_tRNS) != 0;
  if (colorType == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(png);
  if (colorType == PNG_COLOR_TYPE_GRAY && bitDepth < 8) png_set_expand_gray_1_2_4_to_8(png);
  if (hasTransparency) png_set_tRNS_to_alpha(png);
  if (bitDepth == 16) png_set_scale_16(png);
  if (colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_GRAY_ALPHA)
    png_set_gray_to_rgb(png);
  if ((colorType & PNG_COLOR_MASK_ALPHA) == 0 && !hasTransparency)
    png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
}

bool readPixels(png_structp png, png_infop info, const Header* header, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return false;
  requestRgba(png, info);
  if (png_get_rowbytes(png, info) != static_cast<size_t>(header->width) * 4)
    png_error(png, "unexpected pixel layout after conversion");
  png_read_image(png, rows);
  return true;
}

bool writeImage(png_structp png, png_infop info, std::FILE* file, const Header* header,
                int colorType, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_init_io(png, file);
  png_set_IHDR(png, info, header->width, header->height, 8, colorType, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  png_write_image(png, rows);
  png_write_end(png, nullptr);
  return true;
}

class ReadStructs {
 public:
  explicit ReadStructs(ErrorText* error)
      : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, error, onError, onWarning)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {}
  ~ReadStructs() { png_destroy_read_struct(&png_, info_ ? &info_ : nullptr, nullptr); }
  ReadStructs(const ReadStructs&) = delete;
  ReadStructs& operator=(const ReadStructs&) = delete;
  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

 private:
  png_structp png_;
  png_infop info_;
};

class WriteStructs {
 public:
  explicit WriteStructs(ErrorText* error)
      : png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, error, onError, onWarning)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {}
  ~WriteStructs() { png_destroy_write_struct(&png_, info_ ? &info_ : nullptr); }
  WriteStructs(const WriteStructs&) = delete;
  WriteStructs& operator=(const WriteStructs&) = delete;
  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

 private:
  png_structp png_;
  png_infop info_;
};

[[noreturn]] void invalid(const std::string& what, const std::string& why) {
  throw Error(errInvalidPicture, what + " " + why);
}

std::vector<png_bytep> rowPointers(uint8_t* bytes, png_uint_32 height, size_t rowBytes) {
  std::vector<png_bytep> rows(height);
  for (png_uint_32 y = 0; y < height; ++y)
    rows[y] = bytes + y * rowBytes;
  return rows;
}

constexpr size_t kSignatureSize = 8;
// The signature, then the IHDR chunk's length, type, width and height.
constexpr size_t kHeaderPrefix = kSignatureSize + 16;

uint32_t bigEndian(const uint8_t* bytes) {
  return (uint32_t{bytes[0]} << 24) | (uint32_t{bytes[1]} << 16) | (uint32_t{bytes[2]} << 8) |
         bytes[3];
}

void checkSize(const std::string& what, uint64_t width, uint64_t height, uint64_t maxPixels) {
  if (width > static_cast<uint64_t>(Png::kMaxSize) || height > static_cast<uint64_t>(Png::kMaxSize))
    invalid(what, "is " + std::to_string(width) + "x" + std::to_string(height) +
                      " pixels, larger than " + std::to_string(Png::kMaxSize));
  if (width * height > maxPixels)
    invalid(what, "is " + std::to_string(width) + "x" + std::to_string(height) +
                      " pixels, more than the " + std::to_string(maxPixels) +
                      " pixels allowed here");
}

// The signature and the size the header promises, from the file's first bytes,
// before the rest is read; libpng checks the whole header again when decoding.
void checkHeaderPrefix(std::span<const uint8_t> data, const std::string& what, uint64_t maxPixels) {
  if (data.size() < kSignatureSize || png_sig_cmp(data.data(), 0, kSignatureSize) != 0)
    invalid(what, "is not a PNG image");
  if (data.size() < kHeaderPrefix || bigEndian(data.data() + 8) != 13 ||
      std::memcmp(data.data() + 12, "IHDR", 4) != 0)
    invalid(what, "is damaged: it does not start with an image header");
  checkSize(what, bigEndian(data.data() + 16), bigEndian(data.data() + 20), maxPixels);
}

std::shared_ptr<Picture> decode(std::span<const uint8_t> data, const std::string& what,
                                uint64_t maxPixels) {
  checkHeaderPrefix(data, what, maxPixels);
  MemorySource source{data.data(), data.size(), 0, {}};
  ReadStructs structs(&source.error);
  if (!structs.png() || !structs.info()) invalid(what, "cannot be read: libpng has no memory");
  png_set_read_fn(structs.png(), &source, readFromMemory);
  png_set_chunk_malloc_max(structs.png(), 4u << 20);
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
  // Lets the fuzzer past the checksums to the code behind them.
  png_set_crc_action(structs.png(), PNG_CRC_QUIET_USE, PNG_CRC_QUIET_USE);
  png_set_option(structs.png(), PNG_IGNORE_ADLER32, PNG_OPTION_ON);
#endif

  Header header{};
  if (!readHeader(structs.png(), structs.info(), &header))
    invalid(what, std::string("is damaged: ") + source.error.text);
  checkSize(what, header.width, header.height, maxPixels);
  // Deflate packs at most about 1032 bytes into one: a header that promises more
  // pixels than the data can hold is damaged, and is refused before allocating.
  constexpr uint64_t kMaxDeflateRatio = 1100;
  if (static_cast<uint64_t>(header.fileRowBytes) * header.height >
      static_cast<uint64_t>(data.size()) * kMaxDeflateRatio)
    invalid(what, "is damaged: " + std::to_string(data.size()) + " bytes cannot hold " +
                      std::to_string(header.width) + "x" + std::to_string(header.height) +
                      " pixels");

  std::vector<uint32_t> pixels(static_cast<size_t>(header.width) * header.height);
  auto* bytes = reinterpret_cast<uint8_t*>(pixels.data());
  std::vector<png_bytep> rows = rowPointers(bytes, header.height, size_t{header.width} * 4);
  if (!readPixels(structs.png(), structs.info(), &header, rows.data()))
    invalid(what, std::string("is damaged: ") + source.error.text);

  // The rows hold R, G, B, A bytes; pictures keep 0xAARRGGBB words.
  for (size_t i = 0; i < pixels.size(); ++i) {
    const uint8_t* p = bytes + i * 4;
    pixels[i] = (uint32_t{p[3]} << 24) | (uint32_t{p[0]} << 16) | (uint32_t{p[1]} << 8) | p[2];
  }
  return std::make_shared<Picture>(static_cast<int32_t>(header.width),
                                   static_cast<int32_t>(header.height), std::move(pixels));
}

void encode(const std::string& path, int32_t width, int32_t height, int colorType,
            std::vector<uint8_t>& bytes) {
  if (width < 1 || height < 1)
    throw Error(errInvalidProcedureCall, "Png.Write: an image of " + std::to_string(width) + "x" +
                                             std::to_string(height) +
                                             " pixels cannot be written to \"" + path + "\"");
  const size_t rowBytes = bytes.size() / static_cast<size_t>(height);
  std::vector<png_bytep> rows =
      rowPointers(bytes.data(), static_cast<png_uint_32>(height), rowBytes);
  ReplaceFile(path, [&](std::FILE* file) {
    ErrorText error{};
    WriteStructs structs(&error);
    const Header header{static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                        rowBytes};
    if (!structs.png() || !structs.info() ||
        !writeImage(structs.png(), structs.info(), file, &header, colorType, rows.data()))
      throw Error(errPathFileAccess, path + ": cannot be written: " +
                                         (error.text[0] ? error.text : "libpng has no memory"));
  });
}

}  // namespace

std::shared_ptr<Picture> Png::Read(const std::string& path, uint64_t maxPixels) {
  const std::string what = "Png.Read: the file \"" + path + "\"";
  RegularFile file = [&] {
    try {
      return RegularFile::Open(path, kMaxFileBytes);
    } catch (const Error& error) {
      throw Error(error.Number(), "Png.Read: " + error.Description());
    }
  }();
  try {
    std::vector<uint8_t> data = file.Read(kHeaderPrefix);
    checkHeaderPrefix(data, what, maxPixels);
    const std::vector<uint8_t> rest = file.ReadRest();
    data.insert(data.end(), rest.begin(), rest.end());
    return decode(data, what, maxPixels);
  } catch (const Error& error) {
    if (error.Number() == errInvalidPicture) throw;
    throw Error(error.Number(), "Png.Read: " + error.Description());
  }
}

std::shared_ptr<Picture> Png::ReadMemory(std::span<const uint8_t> data, uint64_t maxPixels) {
  return decode(data, "Png.ReadMemory: the data (" + std::to_string(data.size()) + " bytes)",
                maxPixels);
}

void Png::Write(const std::string& path, const Picture& picture) {
  std::vector<uint8_t> bytes(static_cast<size_t>(picture.Width()) * picture.Height() * 4);
  const uint32_t* pixels = picture.Pixels();
  for (size_t i = 0; i < bytes.size() / 4; ++i) {
    bytes[i * 4 + 0] = static_cast<uint8_t>(pixels[i] >> 16);
    bytes[i * 4 + 1] = static_cast<uint8_t>(pixels[i] >> 8);
    bytes[i * 4 + 2] = static_cast<uint8_t>(pixels[i]);
    bytes[i * 4 + 3] = static_cast<uint8_t>(pixels[i] >> 24);
  }
  encode(path, picture.Width(), picture.Height(), PNG_COLOR_TYPE_RGBA, bytes);
}

void Png::WriteRGB(const std::string& path, const uint32_t* pixels, int32_t width, int32_t height) {
  if (!pixels && width > 0 && height > 0)
    throw Error(errInvalidProcedureCall, "Png.WriteRGB: no pixels given for \"" + path + "\"");
  const size_t count =
      width > 0 && height > 0 ? static_cast<size_t>(width) * static_cast<size_t>(height) : 0;
  std::vector<uint8_t> bytes(count * 3);
  for (size_t i = 0; i < count; ++i) {
    bytes[i * 3 + 0] = static_cast<uint8_t>(pixels[i] >> 16);
    bytes[i * 3 + 1] = static_cast<uint8_t>(pixels[i] >> 8);
    bytes[i * 3 + 2] = static_cast<uint8_t>(pixels[i]);
  }
  encode(path, width, height, PNG_COLOR_TYPE_RGB, bytes);
}

}  // namespace velt
