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

// The pattern matches every name of the first list and none of the second.
void expectMatches(std::string_view pattern, std::initializer_list<std::string_view> matching,
                   std::initializer_list<std::string_view> others) {
  const WildcardPattern wildcard(pattern);
  for (std::string_view name : matching)
    EXPECT_TRUE(wildcard.Matches(name)) << "\"" << pattern << "\", \"" << name << "\"";
  for (std::string_view name : others)
    EXPECT_FALSE(wildcard.Matches(name)) << "\"" << pattern << "\", \"" << name << "\"";
}

TEST(WildcardPatternTest, StarMatchesAnyRunQuestionMarkOneCharacterTheRestItself) {
  expectMatches("*.txt", {"notes.txt", ".txt"}, {"notes.txt.bak", "notestxt"});
  expectMatches("a*b*c", {"abc", "aXXbYYbZc"}, {"aXXbYYbZ"});
  expectMatches("log?.txt", {"log1.txt"}, {"log.txt", "log12.txt"});
  expectMatches("[a].txt", {"[a].txt"}, {"a.txt"});
  expectMatches("back\\slash", {"back\\slash"}, {"backslash"});
  // A dot before trailing stars also matches the end of the name; no other dot does.
  expectMatches("readme.*", {"readme", "readme.md", "readme."}, {"readmeX", "readm"});
  expectMatches("*.t*", {"readme.txt"}, {"readme"});
}

TEST(WildcardPatternTest, CaseFoldsSimplyAndStrayBytesAreOneCharacterMatchingThemselves) {
  expectMatches("*.TXT", {"notes.txt"}, {"notes.txf"});
  expectMatches("\xC3\x84pfel*", {"\xC3\xA4PFEL.txt"}, {});  // Äpfel / äPFEL
  expectMatches("\xCE\xA3*", {"\xCF\x83\xCE\xB9"}, {});      // Σ / σι
  expectMatches("gro\xC3\x9F", {}, {"gross"});               // simple folding only
  // ä is two bytes, one character; a byte that is not UTF-8 is one character.
  expectMatches("a?z", {"a\xC3\xA4z", "a\xFFz"}, {"a\xC3\xA4\xA4z"});
  expectMatches("a??z", {"a\xC3\xFFz"}, {"a\xC3\xA4z"});       // a lead byte without its tail
  expectMatches("?", {"\xF0\x9F\x98\x80"}, {"\xE0\x80\x80"});  // overlong: three stray bytes
  expectMatches("\xC3*", {"\xC3xyz"}, {"\xC3\xA4"});           // a stray byte is not part of ä
}

TEST(WildcardPatternTest, MatchesEverythingOnlyForPatternsThatDo) {
  for (const char* pattern : {"", "*", "*.*", "**", "**.**"}) {
    const WildcardPattern wildcard(pattern);
    EXPECT_TRUE(wildcard.MatchesEverything()) << pattern;
    EXPECT_TRUE(wildcard.Matches("\xff\xfe")) << pattern;
  }
  for (const char* pattern : {".*", "?", "*.?", "*a*", "*."})
    EXPECT_FALSE(WildcardPattern(pattern).MatchesEverything()) << pattern;
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
