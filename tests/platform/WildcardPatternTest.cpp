#include "velt/platform/WildcardPattern.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <string>
#include <string_view>

namespace velt {
namespace {

bool matches(std::string_view pattern, std::string_view name) {
  return WildcardPattern(pattern).Matches(name);
}

TEST(WildcardPatternTest, StarMatchesAnyRunAndQuestionMarkOneCharacter) {
  EXPECT_TRUE(matches("*.txt", "notes.txt"));
  EXPECT_TRUE(matches("*.txt", ".txt"));
  EXPECT_FALSE(matches("*.txt", "notes.txt.bak"));
  EXPECT_FALSE(matches("*.txt", "notestxt"));
  EXPECT_TRUE(matches("a*b*c", "abc"));
  EXPECT_TRUE(matches("a*b*c", "aXXbYYbZc"));
  EXPECT_FALSE(matches("a*b*c", "aXXbYYbZ"));
  EXPECT_TRUE(matches("*ab", "aab"));
  EXPECT_TRUE(matches("log?.txt", "log1.txt"));
  EXPECT_FALSE(matches("log?.txt", "log.txt"));
  EXPECT_FALSE(matches("log?.txt", "log12.txt"));
  EXPECT_TRUE(matches("???", "abc"));
  EXPECT_FALSE(matches("???", "ab"));
}

TEST(WildcardPatternTest, EveryOtherCharacterIsLiteral) {
  EXPECT_TRUE(matches("[a].txt", "[a].txt"));
  EXPECT_FALSE(matches("[a].txt", "a.txt"));
  EXPECT_TRUE(matches("back\\slash", "back\\slash"));
  EXPECT_FALSE(matches("back\\slash", "backslash"));
  EXPECT_TRUE(matches("a b", "a b"));
  EXPECT_FALSE(matches("a.b", "aXb"));
}

TEST(WildcardPatternTest, DotBeforeTrailingStarsAlsoMatchesTheEnd) {
  EXPECT_TRUE(matches("*.*", "README"));
  EXPECT_TRUE(matches("*.*", "archive.tar.gz"));
  EXPECT_TRUE(matches("*.*", ".profile"));
  EXPECT_TRUE(matches("readme.*", "readme"));
  EXPECT_TRUE(matches("readme.*", "readme.md"));
  EXPECT_TRUE(matches("readme.*", "readme."));
  EXPECT_FALSE(matches("readme.*", "readmeX"));
  EXPECT_FALSE(matches("readme.*", "readm"));
  // Only a dot that ends the pattern before the stars is special.
  EXPECT_FALSE(matches("*.t*", "readme"));
  EXPECT_FALSE(matches("*.", "readme"));
  EXPECT_TRUE(matches("*.", "readme."));
  EXPECT_FALSE(matches(".*", "readme"));
  EXPECT_TRUE(matches(".*", ".bashrc"));
}

TEST(WildcardPatternTest, MatchesEverythingOnlyForPatternsThatDo) {
  for (const char* pattern : {"", "*", "*.*", "**", "**.**"}) {
    const WildcardPattern wildcard(pattern);
    EXPECT_TRUE(wildcard.MatchesEverything()) << pattern;
    EXPECT_TRUE(wildcard.Matches("")) << pattern;
    EXPECT_TRUE(wildcard.Matches("\xff\xfe")) << pattern;
  }
  for (const char* pattern : {".*", "?", "*.?", "*a*", "*."})
    EXPECT_FALSE(WildcardPattern(pattern).MatchesEverything()) << pattern;
  EXPECT_EQ(WildcardPattern("*.TXT").Text(), "*.TXT");
}

TEST(WildcardPatternTest, LetterCaseDoesNotMatter) {
  EXPECT_TRUE(matches("*.TXT", "notes.txt"));
  EXPECT_TRUE(matches("Notes.*", "NOTES.md"));
  EXPECT_TRUE(matches("\xC3\x84pfel*", "\xC3\xA4PFEL.txt"));  // Äpfel / äPFEL
  EXPECT_TRUE(matches("\xCE\xA3*", "\xCF\x83\xCE\xB9"));      // Σ / σι
  EXPECT_FALSE(
      matches("stra\xC3\x9F"
              "e",
              "strasse"));  // simple folding only
  EXPECT_FALSE(matches("*.txt", "notes.txf"));
}

TEST(WildcardPatternTest, QuestionMarkTakesOneCodePointOrOneStrayByte) {
  EXPECT_TRUE(matches("a?c",
                      "a\xC3\xA4"
                      "c"));  // ä is two bytes, one character
  EXPECT_FALSE(matches("a??c",
                       "a\xC3\xA4"
                       "c"));
  EXPECT_TRUE(matches("a?c",
                      "a\xFF"
                      "c"));  // not UTF-8: one byte, one character
  EXPECT_TRUE(matches("a??c",
                      "a\xC3"
                      "\xFF"
                      "c"));                      // a lead byte without its tail
  EXPECT_TRUE(matches("?", "\xF0\x9F\x98\x80"));  // one emoji
  EXPECT_FALSE(matches("?", "\xE0\x80\x80"));     // overlong: three stray bytes
}

TEST(WildcardPatternTest, StrayBytesMatchOnlyThemselves) {
  EXPECT_TRUE(matches("\xFF*",
                      "\xFF"
                      "abc"));
  EXPECT_FALSE(matches("\xFF*",
                       "\xFE"
                       "abc"));
  EXPECT_FALSE(matches("\xC3*", "\xC3\xA4"));  // a stray byte is not part of ä
  EXPECT_TRUE(matches("*\xFE.txt", "caf\xFE.txt"));
}

TEST(WildcardPatternTest, ManyStarsOnALongNameStayCheap) {
  const std::string name(20000, 'a');
  EXPECT_FALSE(matches("*a*a*a*a*a*a*a*a*a*a*b", name));
  EXPECT_TRUE(matches("*a*a*a*a*a*a*a*a*a*a*", name));
}

// The rules written the slow, obvious way, for ASCII.
bool reference(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  const char c = pattern.front();
  if (c == '*')
    return reference(pattern.substr(1), name) ||
           (!name.empty() && reference(pattern, name.substr(1)));
  if (c == '.' && pattern.size() > 1 && pattern.find_first_not_of('*', 1) == std::string::npos) {
    if (name.empty()) return reference(pattern.substr(1), name);
    return name.front() == '.' && reference(pattern.substr(1), name.substr(1));
  }
  if (name.empty()) return false;
  const bool same = c == '?' || std::tolower(static_cast<unsigned char>(c)) ==
                                    std::tolower(static_cast<unsigned char>(name.front()));
  return same && reference(pattern.substr(1), name.substr(1));
}

TEST(WildcardPatternTest, AgreesWithTheRulesOnRandomPatterns) {
  std::mt19937 random(7);
  const std::string patternLetters = "aAb.*?";
  const std::string nameLetters = "aAbB.";
  auto randomText = [&](const std::string& letters, size_t most) {
    std::string text(random() % (most + 1), ' ');
    for (char& c : text)
      c = letters[random() % letters.size()];
    return text;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string pattern = randomText(patternLetters, 7);
    const std::string name = randomText(nameLetters, 8);
    // An empty pattern is the one deliberate exception to the rules above.
    if (pattern.empty()) continue;
    ASSERT_EQ(matches(pattern, name), reference(pattern, name))
        << "pattern \"" << pattern << "\", name \"" << name << "\"";
  }
}

}  // namespace
}  // namespace velt
