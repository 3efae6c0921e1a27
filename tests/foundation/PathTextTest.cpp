#include "velt/foundation/PathText.hpp"

#include <gtest/gtest.h>

namespace velt {
namespace {

TEST(PathText, SplitsAtTheLastBackslash) {
  EXPECT_EQ(FolderOfPath("C:\\a\\b.txt"), "C:\\a\\");
  EXPECT_EQ(FileNameOfPath("C:\\a\\b.txt"), "b.txt");
  EXPECT_EQ(FolderOfPath("C:\\a\\b\\"), "C:\\a\\b\\");
  EXPECT_EQ(FileNameOfPath("C:\\a\\b\\"), "");
  EXPECT_EQ(FolderOfPath("\\b.txt"), "\\");
}

TEST(PathText, SlashesCountAndTheLastOfEitherWins) {
  EXPECT_EQ(FolderOfPath("/home/u/b.txt"), "/home/u/");
  EXPECT_EQ(FileNameOfPath("/home/u/b.txt"), "b.txt");
  EXPECT_EQ(FolderOfPath("C:\\a/b\\c.txt"), "C:\\a/b\\");
  EXPECT_EQ(FileNameOfPath("a\\b/c.txt"), "c.txt");
  EXPECT_EQ(FileNameOfPath("a/b\\c.txt"), "c.txt");
}

TEST(PathText, WithoutSeparatorTheTrimmedPath) {
  EXPECT_EQ(FolderOfPath("  b.txt  "), "b.txt");
  EXPECT_EQ(FileNameOfPath("  b.txt  "), "b.txt");
  EXPECT_EQ(FileNameOfPath(""), "");
  EXPECT_EQ(FolderOfPath("   "), "");
  // Blanks around a name after a separator are part of the name.
  EXPECT_EQ(FileNameOfPath("C:\\a\\ b.txt "), " b.txt ");
}

TEST(PathText, MultibyteNamesStayWhole) {
  EXPECT_EQ(FileNameOfPath("/tmp/\xC3\xBC"
                           "ber/Gr\xC3\xBC\xC3\x9F"
                           "e.txt"),
            "Gr\xC3\xBC\xC3\x9F"
            "e.txt");
  EXPECT_EQ(FolderOfPath("/tmp/\xC3\xBC"
                         "ber/x"),
            "/tmp/\xC3\xBC"
            "ber/");
}

}  // namespace
}  // namespace velt
