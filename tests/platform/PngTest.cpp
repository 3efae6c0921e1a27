#include "velt/platform/Png.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;

using test::errorOf;

// A PNG writer of its own (stored deflate) for layouts the library never writes.
uint32_t crc32(const std::string& bytes) {
  uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit)
      crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

std::string bigEndian(uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16),
          static_cast<char>(value >> 8), static_cast<char>(value)};
}

std::string chunk(const std::string& type, const std::string& data) {
  return bigEndian(static_cast<uint32_t>(data.size())) + type + data +
         bigEndian(crc32(type + data));
}

std::string zlibStored(const std::string& raw) {
  std::string out = "\x78\x01";
  out += '\x01';  // one final stored block
  const auto length = static_cast<uint16_t>(raw.size());
  out += {static_cast<char>(length & 0xFF), static_cast<char>(length >> 8),
          static_cast<char>(~length & 0xFF), static_cast<char>((~length >> 8) & 0xFF)};
  out += raw;
  uint32_t a = 1, b = 0;
  for (unsigned char byte : raw) {
    a = (a + byte) % 65521;
    b = (b + a) % 65521;
  }
  return out + bigEndian((b << 16) | a);
}

std::string pngBytes(uint32_t width, uint32_t height, char bitDepth, char colorType,
                     const std::string& scanlines, const std::string& extra = "",
                     char interlace = 0) {
  const std::string header =
      bigEndian(width) + bigEndian(height) + std::string{bitDepth, colorType, 0, 0, interlace};
  return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + extra +
         chunk("IDAT", zlibStored(scanlines)) + chunk("IEND", "");
}

std::shared_ptr<Picture> decode(const std::string& bytes) {
  return Png::ReadMemory(
      std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
}

class PngTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() /
           ("velt-png-" + std::to_string(getpid()) + "-" +
            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }
  std::string path(const std::string& name) const { return (dir_ / name).string(); }

  fs::path dir_;
};

TEST_F(PngTest, RgbaPicturesRoundTripAndRgbSnapshotsAreOpaque) {
  Picture picture(3, 2);
  const std::vector<uint32_t> pixels{0xFF102030, 0x80FF0000, 0x00000000,
                                     0x7F00FF00, 0xFF0000FF, 0x01ABCDEF};
  for (int32_t i = 0; i < 6; ++i)
    picture.Pixel(i % 3, i / 3, pixels[static_cast<size_t>(i)]);
  Png::Write(path("a.png"), picture);
  const auto back = Png::Read(path("a.png"));
  ASSERT_EQ(back->Width(), 3);
  ASSERT_EQ(back->Height(), 2);
  for (int32_t i = 0; i < 6; ++i)
    EXPECT_EQ(back->Pixel(i % 3, i / 3), pixels[static_cast<size_t>(i)]) << i;

  const uint32_t rgb[] = {0x112233, 0xFFFFFF, 0x000000, 0xFF8000};
  Png::WriteRGB(path("rgb.png"), rgb, 2, 2);
  const auto opaque = Png::Read(path("rgb.png"));
  for (int32_t i = 0; i < 4; ++i)
    EXPECT_EQ(opaque->Pixel(i % 2, i / 2), 0xFF000000u | rgb[i]);
  errorOf(errInvalidProcedureCall, [&] { Png::WriteRGB(path("e.png"), rgb, 0, 2); });
}

TEST_F(PngTest, FileErrorsNameThePath) {
  const std::string missing = path("missing.png");
  EXPECT_NE(errorOf(errFileNotFound, [&] { Png::Read(missing); }).find(missing), std::string::npos);
  const std::string unwritable = path("no/such/dir/out.png");
  EXPECT_NE(
      errorOf(errPathFileAccess, [&] { Png::Write(unwritable, Picture(1, 1)); }).find(unwritable),
      std::string::npos);
  std::ofstream(path("text.png")) << "not an image at all";
  EXPECT_NE(errorOf(errInvalidPicture, [&] { Png::Read(path("text.png")); }).find("text.png"),
            std::string::npos);
}

// Only regular files are read (a FIFO would block, /dev/zero never ends), and
// the size the header promises is checked against the caller's pixel limit
// before the body is read: a header of 16384x16384 over a body of megabytes of
// zeros costs nothing.
TEST_F(PngTest, ReadsRegularFilesAndChecksTheHeaderFirst) {
  ASSERT_EQ(::mkfifo(path("fifo.png").c_str(), 0600), 0);
  fs::create_symlink("/dev/zero", path("zero.png"));
  EXPECT_NE(errorOf(errPathFileAccess, [&] { Png::Read(path("fifo.png")); }).find("a FIFO"),
            std::string::npos);
  EXPECT_NE(errorOf(errPathFileAccess, [&] { Png::Read(path("zero.png")); }).find("a device"),
            std::string::npos);
  EXPECT_NE(errorOf(errPathFileAccess, [&] { Png::Read(dir_.string()); }).find("a folder"),
            std::string::npos);
  std::ofstream(path("huge.png"), std::ios::binary)
      << pngBytes(16384, 16384, 8, 2, std::string(60000, '\0')) << std::string(8 << 20, '\0');
  EXPECT_NE(errorOf(errInvalidPicture, [&] { Png::Read(path("huge.png"), 1 << 20); })
                .find("16384x16384 pixels, more than the 1048576 pixels allowed here"),
            std::string::npos);
  std::ofstream(path("short.png"), std::ios::binary) << "\x89PNG\r\n\x1a\n";
  errorOf(errInvalidPicture, [&] { Png::Read(path("short.png")); });
}

TEST(PngReadTest, ConvertsGreyPaletteAndSixteenBitToRgba) {
  // 1-bit grey, eight pixels 1 0 1 1 0 0 0 0
  auto grey = decode(pngBytes(8, 1, 1, 0, std::string("\x00\xB0", 2)));
  const uint32_t white = 0xFFFFFFFF, black = 0xFF000000;
  const uint32_t expected[] = {white, black, white, white, black, black, black, black};
  for (int32_t x = 0; x < 8; ++x)
    EXPECT_EQ(grey->Pixel(x, 0), expected[x]) << x;

  // 2-bit palette: index 0 made transparent by tRNS, index 1 orange.
  const std::string palette = chunk("PLTE", std::string("\x10\x20\x30\xFF\x80\x00", 6)) +
                              chunk("tRNS", std::string("\x00", 1));
  auto indexed = decode(pngBytes(2, 1, 2, 3, std::string("\x00\x10", 2), palette));
  EXPECT_EQ(indexed->Pixel(0, 0) >> 24, 0u);
  EXPECT_EQ(indexed->Pixel(1, 0), 0xFFFF8000u);

  // 16-bit RGB scales each channel to the nearest 8-bit value.
  auto deep = decode(pngBytes(1, 1, 16, 2, std::string("\x00\x12\x34\xAB\xCD\xFF\x00", 7)));
  const auto scaled = [](double v) { return static_cast<uint32_t>(std::lround(v / 257.0)); };
  EXPECT_EQ(deep->Pixel(0, 0),
            0xFF000000u | scaled(0x1234) << 16 | scaled(0xABCD) << 8 | scaled(0xFF00));
}

TEST(PngReadTest, ReadsInterlacedImages) {
  // Adam7 on 2x2: pass 1 holds (0,0), pass 6 holds (1,0), pass 7 the second row.
  const std::string passes = std::string("\x00", 1) + "\x01\x02\x03\xFF" +  //
                             std::string("\x00", 1) + "\x04\x05\x06\xFF" +  //
                             std::string("\x00", 1) +
                             std::string("\x07\x08\x09\x80\x0A\x0B\x0C\x00", 8);
  auto picture = decode(pngBytes(2, 2, 8, 6, passes, "", 1));
  EXPECT_EQ(picture->Pixel(0, 0), 0xFF010203u);
  EXPECT_EQ(picture->Pixel(1, 0), 0xFF040506u);
  EXPECT_EQ(picture->Pixel(0, 1), 0x80070809u);
  EXPECT_EQ(picture->Pixel(1, 1), 0x000A0B0Cu);
}

TEST(PngReadTest, RejectsDamagedAndAbsurdData) {
  const std::string good = pngBytes(1, 1, 8, 2, std::string("\x00\x01\x02\x03", 4));
  EXPECT_EQ(decode(good)->Pixel(0, 0), 0xFF010203u);
  errorOf(errInvalidPicture, [&] { decode(good.substr(0, good.size() - 20)); });
  std::string badCrc = good;
  badCrc[29] ^= 0x01;  // inside the IHDR checksum
  errorOf(errInvalidPicture, [&] { decode(badCrc); });
  const std::string wide = pngBytes(20000, 1, 8, 0, std::string(20001, '\0'));
  EXPECT_NE(errorOf(errInvalidPicture, [&] { decode(wide); }).find("larger than 16384"),
            std::string::npos);
  // A header promising 16000x16000 pixels backed by a few bytes is refused up front.
  errorOf(errInvalidPicture, [&] { decode(pngBytes(16000, 16000, 8, 6, std::string(9, '\0'))); });
  errorOf(errInvalidPicture, [&] { decode(pngBytes(1, 1, 8, 2, std::string(2, '\0'))); });
}

}  // namespace
}  // namespace velt
