// Reading what comes from outside (regular files of bounded size only) and
// writing through a temporary file renamed over the target.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "support/ExpectError.hpp"
#include "velt/platform/FileReplacement.hpp"
#include "velt/platform/RegularFile.hpp"

namespace velt {
namespace {

namespace fs = std::filesystem;
using test::errorOf;

class FileAccessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    folder = fs::temp_directory_path() / ("velt-files-" + std::to_string(getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder / "sub");
  }
  void TearDown() override { fs::remove_all(folder); }
  std::string path(const std::string& name) const { return (folder / name).string(); }
  std::string text(const std::string& name) const {
    std::ostringstream out;
    out << std::ifstream(path(name)).rdbuf();
    return out.str();
  }
  size_t entries() const {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
  }

  fs::path folder;
};

TEST_F(FileAccessTest, OnlyRegularFilesWithinTheLimitAreRead) {
  std::ofstream(path("ten")) << "0123456789";
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(RegularFile::ReadText(path("ten"), 10), "0123456789");
  const struct {
    std::string file;
    uint64_t limit;
    int32_t number;
    std::string problem;
  } cases[] = {
      {path("ten"), 9, errPathFileAccess, "larger than the limit of 9 bytes"},
      {path("none"), 100, errFileNotFound, "No such file or directory"},
      {path("sub"), 100, errPathFileAccess, "a folder, not a regular file"},
      {path("fifo"), 100, errPathFileAccess, "a FIFO, not a regular file"},  // never blocks
      {"/dev/zero", 100, errPathFileAccess, "a device, not a regular file"},
  };
  for (const auto& bad : cases) {
    const std::string message =
        errorOf(bad.number, [&] { RegularFile::ReadText(bad.file, bad.limit); });
    EXPECT_EQ(message.rfind(bad.file + ": ", 0), 0u) << message;
    EXPECT_NE(message.find(bad.problem), std::string::npos) << message;
  }
  // The header first, the rest after; nothing past the limit.
  RegularFile file = RegularFile::Open(path("ten"), 10);
  EXPECT_EQ(file.Read(3), (std::vector<uint8_t>{'0', '1', '2'}));
  EXPECT_EQ(file.ReadRest().size(), 7u);
}

// The target holds the old or the whole new content, a link planted where a
// temporary file could go is never written through, and failures name the
// target and the system's reason.
TEST_F(FileAccessTest, ReplacingWritesATemporaryFileAndRenamesIt) {
  std::ofstream(path("victim")) << "victim";
  std::ofstream(path("out.txt")) << "old";
  fs::create_symlink(path("victim"), path(".out.txt.tmp"));
  ReplaceFile(path("out.txt"), [](std::FILE* file) { std::fputs("new", file); });
  EXPECT_EQ(text("out.txt"), "new");
  EXPECT_EQ(text("victim"), "victim");

  const size_t before = entries();
  EXPECT_THROW(ReplaceFile(path("out.txt"),
                           [](std::FILE* file) {
                             std::fputs("half", file);
                             throw std::runtime_error("killed");
                           }),
               std::runtime_error);
  EXPECT_EQ(text("out.txt"), "new");
  EXPECT_EQ(entries(), before) << "the temporary file is removed";

  const std::string missing = path("no/such/out.txt");
  EXPECT_EQ(errorOf(errPathFileAccess, [&] { ReplaceFile(missing, [](std::FILE*) {}); }),
            missing + ": cannot be written: No such file or directory");
  EXPECT_NE(errorOf(errPathFileAccess, [&] { ReplaceFile(path("sub"), [](std::FILE*) {}); })
                .find("sub: cannot be written: Is a directory"),
            std::string::npos);
}

}  // namespace
}  // namespace velt
