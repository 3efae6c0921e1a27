#include "velt/platform/Collator.hpp"

#include <gtest/gtest.h>

#include <string>

#include "PinnedLocale.hpp"
#include "support/ExpectError.hpp"

namespace velt {
namespace {

using CollatorTest = PinnedLocale;

const std::string kApples = "\xC3\xA4pfel";  // äpfel

// Case is ignored, accents are not; malformed text compares without error.
TEST_F(CollatorTest, IgnoresCaseButNotAccents) {
  const Collator collator("en");
  EXPECT_EQ(collator.Compare("Resume", "rESUME"), 0);
  EXPECT_EQ(collator.Compare("resume", "r\xC3\xA9sum\xC3\xA9"), -1);  // résumé
  EXPECT_EQ(collator.Compare("R\xC3\x89SUM\xC3\x89", "resume"), 1);
  EXPECT_EQ(collator.Compare("apple", "Banana"), -1);
  EXPECT_EQ(collator.Compare("Banana", "apple"), 1);
  EXPECT_EQ(collator.Compare("", "a"), -1);
  const int32_t forward = collator.Compare("\xFF", "a");
  EXPECT_NE(forward, 0);
  EXPECT_EQ(collator.Compare("a", "\xFF"), -forward);
  EXPECT_EQ(collator.Compare("\xE4\xB8", "\xE4\xB8"), 0);
}

// A named locale or, by default, the user's; POSIX gets the root order.
TEST_F(CollatorTest, FollowsTheNamedOrTheUsersLocale) {
  EXPECT_EQ(Collator("de").Compare(kApples, "zebra"), -1);
  EXPECT_EQ(Collator("sv").Compare(kApples, "zebra"), 1);
  EXPECT_EQ(Collator("sv").LocaleName(), "sv");
  Pin("sv_SE");
  EXPECT_EQ(Collator().Compare(kApples, "zebra"), 1);
  Pin("de_DE");
  EXPECT_EQ(Collator().Compare(kApples, "zebra"), -1);
  Pin("en_US_POSIX");
  const Collator posix;
  EXPECT_EQ(posix.LocaleName(), "root");
  EXPECT_EQ(posix.Compare("B", "a"), 1);
  EXPECT_EQ(posix.Compare("A", "a"), 0);
}

TEST_F(CollatorTest, ALocaleIcuCannotOpenIsError5NamingIt) {
  const std::string name = "de_DE@collation=" + std::string(300, 'x');
  const std::string message =
      test::errorOf(errInvalidProcedureCall, [&] { Collator collator(name); });
  EXPECT_NE(message.find("de_DE@collation=xxx"), std::string::npos) << message;
}

}  // namespace
}  // namespace velt
