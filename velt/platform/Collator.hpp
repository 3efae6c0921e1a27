#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct UCollator;

namespace velt {

// Orders UTF-8 text by a locale's collation with case folded: "apple" and
// "APPLE" compare equal, accents still count. One collator is meant to be kept
// and reused; opening one costs far more than a comparison.
class Collator {
 public:
  // The user's locale (ICU's default locale). The "C"/POSIX locale has no
  // collation of its own and orders upper case before all lower case, so it
  // gets the root collation instead.
  Collator();
  // A named locale ("de", "sv_SE"); an empty name is the root collation.
  // Error 5 (7 when out of memory) when ICU cannot open it.
  explicit Collator(const std::string& localeName);
  ~Collator();
  Collator(const Collator&) = delete;
  Collator& operator=(const Collator&) = delete;

  // -1 when left sorts first, 0 when both are equal, 1 when left sorts after.
  int32_t Compare(std::string_view left, std::string_view right) const;

  // The locale whose rules are actually in use ("root" when ICU fell back).
  std::string LocaleName() const;

 private:
  void open(const char* localeId, const std::string& nameForErrors);

  UCollator* collator_ = nullptr;
};

}  // namespace velt
