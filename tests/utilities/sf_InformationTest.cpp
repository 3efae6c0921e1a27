#include "velt/utilities/sf_Information.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

std::vector<std::string> filenames(const sf_Information& results) {
  std::vector<std::string> names;
  for (const auto& value : results.NewEnum())
    names.push_back(value->Filename());
  return names;
}

int32_t errorNumberOf(auto&& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

TEST(sf_InformationTest, AddStoresEveryPropertyAndAppends) {
  sf_Information results;
  const auto first =
      results.Add("/data/", "a.txt", "01.02.03, 04:05:06", faArchive | faReadOnly, "12");
  results.Add("/data/", "b.txt", "", faHidden, "0");
  ASSERT_EQ(results.Count(), 2);
  EXPECT_EQ(results.Item(1), first);
  EXPECT_EQ(first->Path(), "/data/");
  EXPECT_EQ(first->Filename(), "a.txt");
  EXPECT_EQ(first->DateTime(), "01.02.03, 04:05:06");
  EXPECT_EQ(first->Attri(), faArchive | faReadOnly);
  EXPECT_EQ(first->Size(), "12");
  EXPECT_EQ(filenames(results), (std::vector<std::string>{"a.txt", "b.txt"}));

  first->Attrib(faDirectory);
  EXPECT_EQ(results.Item(1)->Attri(), faDirectory);
}

TEST(sf_InformationTest, KeysAreUniqueRegardlessOfCase) {
  sf_Information results;
  results.Add("/", "Readme", "", faNormal, "1", "Readme");
  EXPECT_EQ(errorNumberOf([&] { results.Add("/", "README", "", faNormal, "2", "README"); }),
            errKeyAlreadyExists);
  EXPECT_EQ(results.Count(), 1);
  EXPECT_EQ(results.Item(1)->Size(), "1");
  // Results without a key never collide.
  results.Add("/", "Readme", "", faNormal, "3");
  results.Add("/", "Readme", "", faNormal, "4");
  EXPECT_EQ(results.Count(), 3);
}

TEST(sf_InformationTest, PositionsRunFromOneToCount) {
  sf_Information results;
  EXPECT_EQ(errorNumberOf([&] { results.Item(1); }), errSubscriptOutOfRange);
  for (const char* name : {"a", "b", "c"})
    results.Add("/", name, "", faNormal, "0", name);
  EXPECT_EQ(errorNumberOf([&] { results.Item(0); }), errSubscriptOutOfRange);
  EXPECT_EQ(errorNumberOf([&] { results.Item(4); }), errSubscriptOutOfRange);
  EXPECT_EQ(errorNumberOf([&] { results.Remove(-1); }), errSubscriptOutOfRange);
  EXPECT_EQ(results.Count(), 3);

  results.Remove(2);
  EXPECT_EQ(filenames(results), (std::vector<std::string>{"a", "c"}));
  // The removed entry's key is free again.
  results.Add("/", "B", "", faNormal, "0", "B");
  EXPECT_EQ(filenames(results), (std::vector<std::string>{"a", "c", "B"}));
}

}  // namespace
}  // namespace velt
