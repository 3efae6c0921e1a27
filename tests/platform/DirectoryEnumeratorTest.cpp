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
  EXPECT_EQ(names("*", faNormal), plain);
  // Read-only and archive in the mask change nothing.
  EXPECT_EQ(names("*", faReadOnly | faArchive), plain);

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
}

TEST_F(DirectoryEnumeratorTest, PatternAppliesBeforeTheMask) {
  EXPECT_EQ(names("*.TXT", faNormal), (Names{"plain.txt", "readonly.txt"}));
  EXPECT_EQ(names("*.txt", faHidden), (Names{"plain.txt", "readonly.txt", ".hidden.txt"}));
  EXPECT_EQ(names("*link", faDirectory | faSystem),
            (Names{"file-link", "folder-link", "broken-link"}));
  EXPECT_EQ(names("nothing*", faHidden | faSystem | faDirectory), Names{});
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
  const DirectoryEntry& plain = entries.at("plain.txt");
  EXPECT_TRUE(plain.Described);
  EXPECT_EQ(plain.Size, 1234);
  EXPECT_EQ(plain.ModifiedSeconds, 1600000000);
  EXPECT_EQ(entries.at("sub").Size, 0);
  EXPECT_EQ(entries.at("file-link").Size, 1234);
  EXPECT_EQ(entries.at("folder-link").Identity, entries.at("sub").Identity);
  EXPECT_NE(entries.at("sub").Identity, entries.at(".hiddensub").Identity);
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
  for (int pass = 0; pass < 2; ++pass) {
    enumerator.Start(folder, pattern, faNormal);
    DirectoryEntry entry;
    size_t count = 0;
    while (enumerator.Next(entry)) {
      names.insert(std::string(entry.Name));
      ++count;
    }
    EXPECT_EQ(count, 1500u);
  }
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

  FolderHandle moved = FolderHandle::Open(tree.Root());
  FolderHandle target = std::move(moved);
  EXPECT_FALSE(moved.IsOpen());
  EXPECT_EQ(target.Identity(), root.Identity());
}

}  // namespace
}  // namespace velt
