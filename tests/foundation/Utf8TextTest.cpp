#include "velt/foundation/Utf8Text.hpp"

#include <gtest/gtest.h>

#include <string>

#include "velt/platform/Error.hpp"

namespace velt {
namespace {

// "Grüße 世界 😀": 1-, 2-, 3- and 4-byte characters.
const std::string kMixed =
    "Gr\xC3\xBC\xC3\x9F"
    "e \xE4\xB8\x96\xE7\x95\x8C \xF0\x9F\x98\x80";
const std::string kWorld = "\xE4\xB8\x96\xE7\x95\x8C";  // 世界
const std::string kSmiley = "\xF0\x9F\x98\x80";

template <typename Body>
void expectInvalidArgument(Body body) {
  try {
    body();
    ADD_FAILURE() << "expected error 5";
  } catch (const Error& e) {
    EXPECT_EQ(e.Number(), errInvalidProcedureCall) << e.what();
  }
}

TEST(Utf8Text, LengthCountsCharacters) {
  EXPECT_EQ(Len(""), 0);
  EXPECT_EQ(Len("abc"), 3);
  EXPECT_EQ(Len(kMixed), 10);
  EXPECT_EQ(Len(kSmiley), 1);
}

TEST(Utf8Text, MalformedBytesCountOneEach) {
  EXPECT_EQ(Len("a\xFF"
                "b"),
            3);
  EXPECT_EQ(Len("\xE4\xB8"), 2);  // a cut-off three-byte character
  EXPECT_EQ(Len("\xC0\x80"), 2);  // overlong forms
  EXPECT_EQ(Len("\xE0\x80\x80"), 3);
  EXPECT_EQ(Len("\xF0\x80\x80\x80"), 4);
  EXPECT_EQ(Len("\xED\xA0\x80"), 3);      // a surrogate
  EXPECT_EQ(Len("\xF4\x90\x80\x80"), 4);  // above U+10FFFF
  EXPECT_EQ(Len("\x80\x80"
                "a"),
            3);  // stray continuation bytes
  EXPECT_EQ(Mid("a\xFF"
                "b",
                2, 1),
            "\xFF");
  EXPECT_EQ(Left("\xE4\xB8"
                 "x",
                 2),
            "\xE4\xB8");
  EXPECT_EQ(Right("x\xF0\x9F", 1), "\x9F");
  EXPECT_EQ(UCase("a\xFF\xE4"
                  "b"),
            "A\xFF\xE4"
            "B");
}

TEST(Utf8Text, LeftRightMidCutAtCharacters) {
  EXPECT_EQ(Left(kMixed, 4), "Gr\xC3\xBC\xC3\x9F");
  EXPECT_EQ(Left(kMixed, 0), "");
  EXPECT_EQ(Left(kMixed, 100), kMixed);
  EXPECT_EQ(Right(kMixed, 1), kSmiley);
  EXPECT_EQ(Right(kMixed, 4), kWorld + " " + kSmiley);
  EXPECT_EQ(Right(kMixed, 100), kMixed);
  EXPECT_EQ(Right(kMixed, 0), "");
  EXPECT_EQ(Mid(kMixed, 7), kWorld + " " + kSmiley);
  EXPECT_EQ(Mid(kMixed, 3, 2), "\xC3\xBC\xC3\x9F");
  EXPECT_EQ(Mid(kMixed, 8, 1), "\xE7\x95\x8C");
  EXPECT_EQ(Mid(kMixed, 10, 5), kSmiley);
  EXPECT_EQ(Mid(kMixed, 11), "");
  EXPECT_EQ(Mid(kMixed, 50, 2), "");
  EXPECT_EQ(Mid(kMixed, 1, 0), "");
}

TEST(Utf8Text, BadPositionsAndLengthsAreInvalidArguments) {
  expectInvalidArgument([] { Mid("abc", 0); });
  expectInvalidArgument([] { Mid("abc", -3, 1); });
  expectInvalidArgument([] { Mid("abc", 1, -1); });
  expectInvalidArgument([] { Left("abc", -1); });
  expectInvalidArgument([] { Right("abc", -1); });
  expectInvalidArgument([] { InStr(0, "abc", "a"); });
}

TEST(Utf8Text, TrimRemovesSpacesOnly) {
  EXPECT_EQ(Trim("  a b  "), "a b");
  EXPECT_EQ(LTrim("  a b  "), "a b  ");
  EXPECT_EQ(RTrim("  a b  "), "  a b");
  EXPECT_EQ(Trim("\ta\n"), "\ta\n");
  EXPECT_EQ(Trim("    "), "");
  EXPECT_EQ(LTrim("   "), "");
  EXPECT_EQ(RTrim("   "), "");
  EXPECT_EQ(Trim(" " + kWorld + " "), kWorld);
}

TEST(Utf8Text, InStrGivesCharacterPositions) {
  EXPECT_EQ(InStr(kMixed,
                  "\xC3\x9F"
                  "e"),
            4);
  EXPECT_EQ(InStr(kMixed, kSmiley), 10);
  EXPECT_EQ(InStr(kMixed, "x"), 0);
  EXPECT_EQ(InStr("abcabc", "bc"), 2);
  EXPECT_EQ(InStr(3, "abcabc", "bc"), 5);
  EXPECT_EQ(InStr(6, "abcabc", "bc"), 0);
  EXPECT_EQ(InStr(9, "abc", "a"), 0);
  EXPECT_EQ(InStr("ABC", "b"), 0);  // exact comparison
  EXPECT_EQ(InStr("", "a"), 0);
  EXPECT_EQ(InStr("", ""), 0);
  EXPECT_EQ(InStr("abc", ""), 1);
  EXPECT_EQ(InStr(4, "abc", ""), 4);
  EXPECT_EQ(InStr(5, "abc", ""), 0);
}

TEST(Utf8Text, InStrNeverMatchesPartOfACharacter) {
  // The lead byte of "ü" alone, and its continuation byte alone, are other
  // characters than "ü".
  EXPECT_EQ(InStr("\xC3\xBC"
                  "x",
                  "\xC3"),
            0);
  EXPECT_EQ(InStr("\xC3\xBC"
                  "x",
                  "\xBC"),
            0);
  EXPECT_EQ(InStr("\xC3\xBC"
                  "x\xC3",
                  "\xC3"),
            3);
  EXPECT_EQ(InStr("a\xBC", "\xBC"), 2);
}

TEST(Utf8Text, CaseMappingCoversLatinGreekAndCyrillic) {
  EXPECT_EQ(UCase("abc xyz 123"), "ABC XYZ 123");
  EXPECT_EQ(LCase("ABC XYZ 123"), "abc xyz 123");
  // äöüéñ <-> ÄÖÜÉÑ; ß and the division/multiplication signs stay.
  EXPECT_EQ(UCase("\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA9\xC3\xB1\xC3\x9F\xC3\xB7"),
            "\xC3\x84\xC3\x96\xC3\x9C\xC3\x89\xC3\x91\xC3\x9F\xC3\xB7");
  EXPECT_EQ(LCase("\xC3\x84\xC3\x96\xC3\x9C\xC3\x89\xC3\x91\xC3\x97"),
            "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA9\xC3\xB1\xC3\x97");
  // ÿ <-> Ÿ (U+0178), across the block boundary.
  EXPECT_EQ(UCase("\xC3\xBF"), "\xC5\xB8");
  EXPECT_EQ(LCase("\xC5\xB8"), "\xC3\xBF");
  // Latin Extended-A: Ā/ā (even upper), Ĺ/ĺ and Ž/ž (odd upper), Ŋ/ŋ.
  EXPECT_EQ(UCase("\xC4\x81\xC4\xBA\xC5\xBE\xC5\x8B"), "\xC4\x80\xC4\xB9\xC5\xBD\xC5\x8A");
  EXPECT_EQ(LCase("\xC4\x80\xC4\xB9\xC5\xBD\xC5\x8A"), "\xC4\x81\xC4\xBA\xC5\xBE\xC5\x8B");
  EXPECT_EQ(LCase("\xC5\x88"), "\xC5\x88");  // ň is already lower case
  // Greek αβσς <-> ΑΒΣΣ, Cyrillic жё <-> ЖЁ.
  EXPECT_EQ(UCase("\xCE\xB1\xCE\xB2\xCF\x83\xCF\x82"), "\xCE\x91\xCE\x92\xCE\xA3\xCE\xA3");
  EXPECT_EQ(LCase("\xCE\x91\xCE\x92\xCE\xA3"), "\xCE\xB1\xCE\xB2\xCF\x83");
  EXPECT_EQ(UCase("\xD0\xB6\xD1\x91"), "\xD0\x96\xD0\x81");
  EXPECT_EQ(LCase("\xD0\x96\xD0\x81"), "\xD0\xB6\xD1\x91");
  // Characters without case survive unchanged.
  EXPECT_EQ(UCase(kWorld + kSmiley), kWorld + kSmiley);
}

}  // namespace
}  // namespace velt
