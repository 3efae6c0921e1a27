#include "velt/foundation/PathText.hpp"

#include <gtest/gtest.h>

namespace velt {
namespace {

// Either separator counts and the last of either wins; without one both give
// the trimmed path; blanks after a separator belong to the name.
TEST(PathText, SplitsAtTheLastSeparatorOfEitherKind) {
  const struct {
    const char* path;
    const char* folder;
    const char* file;
  } cases[] = {{"C:\\a\\b.txt", "C:\\a\\", "b.txt"},
               {"C:\\a\\b\\", "C:\\a\\b\\", ""},
               {"\\b.txt", "\\", "b.txt"},
               {"/home/u/b.txt", "/home/u/", "b.txt"},
               {"C:\\a/b\\c.txt", "C:\\a/b\\", "c.txt"},
               {"a/b\\c.txt", "a/b\\", "c.txt"},
               {"  b.txt  ", "b.txt", "b.txt"},
               {"   ", "", ""},
               {"C:\\a\\ b.txt ", "C:\\a\\", " b.txt "},
               {"/tmp/\xC3\xBC\x62\x65r/Gr\xC3\xBC\xC3\x9F\x65.txt", "/tmp/\xC3\xBC\x62\x65r/",
                "Gr\xC3\xBC\xC3\x9F\x65.txt"}};
  for (const auto& c : cases) {
    EXPECT_EQ(FolderOfPath(c.path), c.folder) << c.path;
    EXPECT_EQ(FileNameOfPath(c.path), c.file) << c.path;
  }
}

}  // namespace
}  // namespace velt
