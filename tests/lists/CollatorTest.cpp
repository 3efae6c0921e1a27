#include "velt/platform/Collator.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PinnedLocale.hpp"
#include "velt/platform/Error.hpp"

namespace velt {
namespace {

using CollatorTest = PinnedLocale;

TEST_F(CollatorTest, IgnoresCaseButNotAccents) {
  const Collator collator("en");
  EXPECT_EQ(collator.Compare("Resume", "rESUME"), 0);
  EXPECT_EQ(collator.Compare("resume", "r\xC3\xA9sum\xC3\xA9"), -1);  // résumé
  EXPECT_EQ(collator.Compare("R\xC3\x89SUM\xC3\x89", "resume"), 1);
  EXPECT_EQ(collator.Compare("apple", "Banana"), -1);
  EXPECT_EQ(collator.Compare("Banana", "apple"), 1);
  EXPECT_EQ(collator.Compare("", ""), 0);
  EXPECT_EQ(collator.Compare("", "a"), -1);
}

TEST_F(CollatorTest, FollowsTheLocalesRules) {
  const std::string umlaut = "\xC3\xA4pfel";  // äpfel
  EXPECT_EQ(Collator("de").Compare(umlaut, "apple"), -1);
  EXPECT_EQ(Collator("sv").Compare(umlaut, "zebra"), 1);
  EXPECT_EQ(Collator("sv").LocaleName(), "sv");
}

TEST_F(CollatorTest, TheDefaultIsTheUsersLocale) {
  Pin("sv_SE");
  EXPECT_EQ(Collator().Compare("\xC3\xA4pfel", "zebra"), 1);
  Pin("de_DE");
  EXPECT_EQ(Collator().Compare("\xC3\xA4pfel", "zebra"), -1);
}

TEST_F(CollatorTest, ThePosixLocaleGetsTheRootOrder) {
  Pin("en_US_POSIX");
  const Collator collator;
  EXPECT_EQ(collator.LocaleName(), "root");
  EXPECT_EQ(collator.Compare("B", "a"), 1);
  EXPECT_EQ(collator.Compare("A", "a"), 0);
}

TEST_F(CollatorTest, MalformedTextComparesWithoutError) {
  const Collator collator("en");
  const int32_t forward = collator.Compare("\xFF", "a");
  EXPECT_NE(forward, 0);
  EXPECT_EQ(collator.Compare("a", "\xFF"), -forward);
  EXPECT_EQ(collator.Compare("\xE4\xB8", "\xE4\xB8"), 0);
}

TEST_F(CollatorTest, ALocaleIcuCannotOpenIsError5NamingIt) {
  const std::string name = "de_DE@collation=" + std::string(300, 'x');
  try {
    Collator collator(name);
    ADD_FAILURE() << "expected error 5";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), errInvalidProcedureCall);
    EXPECT_NE(e.Description().find("de_DE@collation=xxx"), std::string::npos) << e.what();
  }
}

}  // namespace
}  // namespace velt
