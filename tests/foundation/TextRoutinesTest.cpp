// The text routines: UTF-8 strings by characters, numbers as text, and paths.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "support/ExpectError.hpp"
#include "velt/foundation/NumberText.hpp"
#include "velt/foundation/PathText.hpp"
#include "velt/foundation/Utf8Text.hpp"

namespace velt {
namespace {

using Pair = std::pair<std::string, std::string>;
using Strings = std::vector<std::string>;

// "Grüße 世界 😀": 1-, 2-, 3- and 4-byte characters.
const std::string kMixed = "Gr\xC3\xBC\xC3\x9F\x65 \xE4\xB8\x96\xE7\x95\x8C \xF0\x9F\x98\x80";
const std::string kWorld = "\xE4\xB8\x96\xE7\x95\x8C";  // 世界
const std::string kSmiley = "\xF0\x9F\x98\x80";

// Malformed bytes (cut off, overlong, a surrogate, above U+10FFFF, stray
// continuations) count one character each and are kept as they are.
TEST(Utf8Text, LengthCountsCharactersAndMalformedBytesOneEach) {
  const std::pair<std::string, int32_t> cases[] = {
      {kMixed, 10},        {"a\xFF\x62", 3},    {"\xE4\xB8", 2},         {"\xC0\x80", 2},
      {"\xE0\x80\x80", 3}, {"\xED\xA0\x80", 3}, {"\xF4\x90\x80\x80", 4}, {"\x80\x80\x61", 3}};
  for (const auto& [text, length] : cases)
    EXPECT_EQ(Len(text), length) << text;
  EXPECT_EQ(Mid("a\xFF\x62", 2, 1), "\xFF");
  EXPECT_EQ(Right("x\xF0\x9F", 1), "\x9F");
  EXPECT_EQ(UCase("a\xFF\xE4\x62"), "A\xFF\xE4\x42");
}

TEST(Utf8Text, LeftRightMidCutAtCharactersAndRefuseBadArguments) {
  const std::string tail = kWorld + " " + kSmiley;
  EXPECT_EQ((Strings{Left(kMixed, 4), Left(kMixed, 0), Left(kMixed, 100), Right(kMixed, 1),
                     Right(kMixed, 4), Right(kMixed, 100), Right(kMixed, 0)}),
            (Strings{"Gr\xC3\xBC\xC3\x9F", "", kMixed, kSmiley, tail, kMixed, ""}));
  EXPECT_EQ((Strings{Mid(kMixed, 7), Mid(kMixed, 3, 2), Mid(kMixed, 8, 1), Mid(kMixed, 10, 5),
                     Mid(kMixed, 11), Mid(kMixed, 50, 2), Mid(kMixed, 1, 0)}),
            (Strings{tail, "\xC3\xBC\xC3\x9F", "\xE7\x95\x8C", kSmiley, "", "", ""}));
  for (const auto& bad :
       {+[] { Mid("abc", 0); }, +[] { Mid("abc", 1, -1); }, +[] { Left("abc", -1); },
        +[] { Right("abc", -1); }, +[] { InStr(0, "abc", "a"); }})
    test::errorOf(errInvalidProcedureCall, bad);
}

// Only " " is trimmed, as the classic functions do.
TEST(Utf8Text, TrimRemovesSpacesOnly) {
  const Pair cases[] = {
      {Trim("  a b  "), "a b"},           {LTrim("  a b  "), "a b  "},
      {RTrim("  a b  "), "  a b"},        {Trim("\ta\n"), "\ta\n"},
      {Trim(" " + kWorld + " "), kWorld}, {Trim("    ") + LTrim("   ") + RTrim("   "), ""}};
  for (const auto& [actual, expected] : cases)
    EXPECT_EQ(actual, expected);
}

// Exact comparison, character positions, and never a match inside a character:
// the lead or continuation byte of "ü" alone is another character.
TEST(Utf8Text, InStrGivesCharacterPositions) {
  EXPECT_EQ(
      (std::vector<int32_t>{InStr(kMixed, "\xC3\x9F\x65"), InStr(kMixed, kSmiley),
                            InStr(kMixed, "x"), InStr("abcabc", "bc"), InStr(3, "abcabc", "bc"),
                            InStr(6, "abcabc", "bc"), InStr(9, "abc", "a"), InStr("ABC", "b")}),
      (std::vector<int32_t>{4, 10, 0, 2, 5, 0, 0, 0}));
  // An empty text never matches; an empty find matches at the start while it is
  // at most one past the end.
  EXPECT_EQ((std::vector<int32_t>{InStr("", "a"), InStr("", ""), InStr("abc", ""),
                                  InStr(4, "abc", ""), InStr(5, "abc", "")}),
            (std::vector<int32_t>{0, 0, 1, 4, 0}));
  EXPECT_EQ((std::vector<int32_t>{InStr("\xC3\xBCx", "\xC3"), InStr("\xC3\xBCx", "\xBC"),
                                  InStr("\xC3\xBCx\xC3", "\xC3"), InStr(2, "a\xBC", "\xBC")}),
            (std::vector<int32_t>{0, 0, 3, 2}));
}

TEST(Utf8Text, CaseMappingCoversLatinGreekAndCyrillic) {
  // Lower and upper case of the same letters: äöüéñ, ÿ Ÿ across the block
  // boundary, Latin Extended-A with even (Āā) and odd (Ĺĺ Žž) upper cases and
  // Ŋŋ, Greek αβσ, Cyrillic жё.
  const Pair pairs[] = {
      {"abc xyz 123", "ABC XYZ 123"},
      {"\xC3\xA4\xC3\xB6\xC3\xBC\xC3\xA9\xC3\xB1", "\xC3\x84\xC3\x96\xC3\x9C\xC3\x89\xC3\x91"},
      {"\xC3\xBF", "\xC5\xB8"},
      {"\xC4\x81\xC4\xBA\xC5\xBE\xC5\x8B", "\xC4\x80\xC4\xB9\xC5\xBD\xC5\x8A"},
      {"\xCE\xB1\xCE\xB2\xCF\x83", "\xCE\x91\xCE\x92\xCE\xA3"},
      {"\xD0\xB6\xD1\x91", "\xD0\x96\xD0\x81"}};
  for (const auto& [lower, upper] : pairs) {
    EXPECT_EQ(UCase(lower), upper);
    EXPECT_EQ(LCase(upper), lower);
  }
  EXPECT_EQ(UCase("\xCF\x82"), "\xCE\xA3");                                    // the final sigma
  const std::string caseless = "\xC3\x9F\xC3\xB7\xC3\x97" + kWorld + kSmiley;  // ß÷× and CJK
  EXPECT_EQ(UCase(caseless) + LCase(caseless), caseless + caseless);
}

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

// Truncation toward zero (-7 * 33% is -2, not -3), the order of the floating
// point steps (7.5 * 16.4 is 122.99999999999999, not the 123 that Value *
// Percent / 100 gives), and 0 for a result beyond 32 bits.
TEST(PercentOf, TruncatesTowardZeroInItsOwnStepOrderAndGivesZeroBeyond32Bits) {
  const std::tuple<int32_t, int16_t, int32_t> cases[] = {
      {200, 50, 100}, {-7, 33, -2},      {200, -50, -100}, {9, 10, 0},        {75, 164, 122},
      {92, 125, 114}, {kMax, 100, kMax}, {kMax, 101, 0},   {kMin, 100, kMin}, {kMin, -32768, 0}};
  for (const auto& [value, percent, expected] : cases)
    EXPECT_EQ(PercentOf(value, percent), expected) << value << " " << percent;
}

TEST(HexDigits, SixUpperCaseDigitsWiderValuesWholeNegativesRejected) {
  EXPECT_EQ(HexDigits(0xAB) + " " + HexDigits(0xFEDCBA) + " " + HexDigits(0x1000000),
            "0000AB FEDCBA 1000000");
  test::errorOf(errInvalidProcedureCall, [] { HexDigits(-1); });
}

TEST(PadZeros, PadsTrimmedTextOnTheLeftCountingCharacters) {
  const std::tuple<const char*, int16_t, const char*> cases[] = {
      {"7", 2, "07"}, {"123", 2, "123"}, {" 7 ", 2, "07"},
      {"", 3, "000"}, {"5", -4, "5"},    {"\xC3\xA4", 3, "00\xC3\xA4"}};
  for (const auto& [text, length, expected] : cases)
    EXPECT_EQ(PadZeros(text, length), expected) << "\"" << text << "\" " << length;
}

// Either separator counts and the last of either wins; without one both give
// the trimmed path; blanks after a separator belong to the name.
TEST(PathText, SplitsAtTheLastSeparatorOfEitherKind) {
  const struct {
    const char* path;
    const char* folder;
    const char* file;
  } cases[] = {{"C:\\a\\b\\", "C:\\a\\b\\", ""},
               {"C:\\a/b\\c.txt", "C:\\a/b\\", "c.txt"},
               {"a\\b/c.txt", "a\\b/", "c.txt"},
               {"  b.txt  ", "b.txt", "b.txt"},
               {"   ", "", ""},
               {"C:\\a\\ b.txt ", "C:\\a\\", " b.txt "}};
  for (const auto& c : cases) {
    EXPECT_EQ(FolderOfPath(c.path), c.folder) << c.path;
    EXPECT_EQ(FileNameOfPath(c.path), c.file) << c.path;
  }
}

}  // namespace
}  // namespace velt
