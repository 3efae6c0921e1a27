#include "velt/platform/DirectoryEnumerator.hpp"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "support/ExpectError.hpp"
#include "utilities/TempTree.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/FolderHandle.hpp"

namespace velt {
namespace {

using Names = std::set<std::string>;

// One of everything the attribute mapping tells apart.
class DirectoryEnumeratorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    tree.File("plain.txt", 1234);
    tree.File(".hidden.txt", 3);
    tree.File("readonly.txt", 5, 0444);
    tree.Folder("sub");
    tree.Folder(".hiddensub");
    tree.Fifo("pipe");
    tree.Link("file-link", "plain.txt");
    tree.Link("folder-link", "sub");
    tree.Link("broken-link", "nowhere");
    folder = FolderHandle::Open(tree.Root());
    ASSERT_TRUE(folder.IsOpen());
  }

  Names names(const std::string& pattern, FileAttributeSet mask) {
    const WildcardPattern wildcard(pattern);
    enumerator.Start(folder, wildcard, mask);
    Names found;
    DirectoryEntry entry;
    while (enumerator.Next(entry))
      found.insert(std::string(entry.Name));
    return found;
  }

  // Every entry, described.
  std::map<std::string, DirectoryEntry> described() {
    const WildcardPattern all("*");
    enumerator.Start(folder, all, faHidden | faSystem | faDirectory);
    std::map<std::string, DirectoryEntry> found;
    DirectoryEntry entry;
    while (enumerator.Next(entry)) {
      EXPECT_TRUE(enumerator.Describe(entry)) << entry.Name;
      const std::string name(entry.Name);
      entry.Name = {};  // points into the enumerator's buffer
      found.emplace(name, entry);
    }
    return found;
  }

  testing::TempTree tree;
  FolderHandle folder;
  DirectoryEnumerator enumerator;
};

TEST_F(DirectoryEnumeratorTest, MaskAdmitsEntriesWhoseExcludingAttributesItHoldsAll) {
  const Names plain = {"plain.txt", "readonly.txt", "file-link"};
  EXPECT_EQ(names("*", faReadOnly | faArchive), plain);  // these two exclude nothing

  Names hidden = plain;
  hidden.insert(".hidden.txt");
  EXPECT_EQ(names("*", faHidden), hidden);

  Names folders = plain;
  folders.insert({"sub", "folder-link"});
  EXPECT_EQ(names("*", faDirectory), folders);

  Names hiddenFolders = hidden;
  hiddenFolders.insert({"sub", "folder-link", ".hiddensub", ".", ".."});
  EXPECT_EQ(names("*", faHidden | faDirectory), hiddenFolders);

  Names system = plain;
  system.insert({"pipe", "broken-link"});
  EXPECT_EQ(names("*", faSystem), system);
  EXPECT_EQ(names("*.TXT", faHidden), (Names{"plain.txt", "readonly.txt", ".hidden.txt"}));
}

TEST_F(DirectoryEnumeratorTest, DescribeMapsAttributesAndGivesSizeTimeAndIdentity) {
  tree.Times("plain.txt", 1000000000, 1600000000);
  const auto entries = described();
  const std::pair<const char*, int32_t> attributes[] = {
      {"plain.txt", faArchive},
      {"readonly.txt", faArchive | faReadOnly},
      {".hidden.txt", faArchive | faHidden},
      {"sub", faDirectory},
      {".hiddensub", faDirectory | faHidden},
      {".", faDirectory | faHidden},
      {"pipe", faSystem},
      // Links are what they lead to; a link leading nowhere is a system entry.
      {"file-link", faArchive},
      {"folder-link", faDirectory},
      {"broken-link", faSystem},
  };
  for (const auto& [name, expected] : attributes) {
    ASSERT_TRUE(entries.count(name)) << name;
    EXPECT_EQ(entries.at(name).Attributes, expected) << name;
  }
  EXPECT_TRUE(entries.at("plain.txt").Described);
  EXPECT_EQ(entries.at("plain.txt").ModifiedSeconds, 1600000000);
  EXPECT_EQ(entries.at("file-link").Size, 1234);
  EXPECT_EQ(entries.at("folder-link").Identity, entries.at("sub").Identity);
  EXPECT_EQ(entries.at(".").Identity, *folder.Identity());
}

TEST_F(DirectoryEnumeratorTest, OnlyTheCurrentEntryCanBeDescribedAndOnlyWhileItExists) {
  const WildcardPattern pattern("plain.txt");
  enumerator.Start(folder, pattern, faNormal);
  DirectoryEntry entry;
  ASSERT_TRUE(enumerator.Next(entry));
  DirectoryEntry stranger;
  stranger.Name = "readonly.txt";
  test::errorOf(errInvalidProcedureCall, [&] { enumerator.Describe(stranger); });
  tree.Remove("plain.txt");
  EXPECT_FALSE(enumerator.Describe(entry));
  EXPECT_FALSE(enumerator.Next(entry));
  EXPECT_THROW(enumerator.Describe(entry), Error) << "past the end";
}

TEST_F(DirectoryEnumeratorTest, DescribeInLooksTheNameUpInAnotherFolder) {
  tree.File("sub/plain.txt", 7);
  tree.File("sub/only-here.txt", 1);
  const FolderHandle sub = folder.OpenRelative("sub");
  const WildcardPattern pattern("*.txt");
  enumerator.Start(sub, pattern, faNormal);
  std::map<std::string, int64_t> sizes;
  DirectoryEntry entry;
  while (enumerator.Next(entry)) {
    if (enumerator.DescribeIn(folder, entry)) sizes[std::string(entry.Name)] = entry.Size;
  }
  EXPECT_EQ(sizes, (std::map<std::string, int64_t>{{"plain.txt", 1234}}));
}

TEST(DirectoryEnumeratorLargeTest, FoldersLargerThanOneReadAreReadWhole) {
  testing::TempTree tree;
  const std::string padding(120, 'n');
  for (int i = 0; i < 1500; ++i)
    tree.File(padding + std::to_string(i));
  const FolderHandle folder = FolderHandle::Open(tree.Root());
  DirectoryEnumerator enumerator;
  const WildcardPattern pattern("*");
  Names names;
  enumerator.Start(folder, pattern, faNormal);
  size_t count = 0;
  for (DirectoryEntry entry; enumerator.Next(entry); ++count)
    names.insert(std::string(entry.Name));
  EXPECT_EQ(count, 1500u);
  EXPECT_EQ(names.size(), 1500u);
}

TEST(FolderHandleTest, OpensFoldersOnly) {
  testing::TempTree tree;
  tree.Folder("a");
  tree.Folder("a/b");
  tree.File("a/file");
  tree.Link("link", "a");
  EXPECT_FALSE(FolderHandle::Open(tree.Path("missing")).IsOpen());
  EXPECT_FALSE(FolderHandle::Open(tree.Path("a/file")).IsOpen());
  EXPECT_FALSE(FolderHandle::Open("").IsOpen());
  EXPECT_FALSE(FolderHandle::Open(std::string("a\0b", 3)).IsOpen());

  const FolderHandle root = FolderHandle::Open(tree.Root());
  const FolderHandle a = root.OpenRelative("a");
  ASSERT_TRUE(a.IsOpen());
  EXPECT_EQ(root.OpenRelative("link").Identity(), a.Identity());
  EXPECT_EQ(root.OpenRelative("//a/b/").Identity(), a.OpenRelative("b").Identity());
  EXPECT_FALSE(root.OpenRelative("a/file").IsOpen());
  EXPECT_FALSE(root.OpenRelative("/").IsOpen());
  EXPECT_FALSE(FolderHandle().OpenRelative("a").IsOpen());
  EXPECT_FALSE(FolderHandle().Identity().has_value());
}

}  // namespace
}  // namespace velt
