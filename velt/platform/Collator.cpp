#include "velt/platform/Collator.hpp"

#include <unicode/ucol.h>
#include <unicode/uloc.h>

#include <climits>
#include <cstring>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

int32_t errorNumberFor(UErrorCode status) {
  return status == U_MEMORY_ALLOCATION_ERROR ? errOutOfMemory : errInvalidProcedureCall;
}

bool isPosixLocale(const char* localeId) {
  char variant[ULOC_FULLNAME_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  uloc_getVariant(localeId, variant, sizeof variant, &status);
  return U_SUCCESS(status) && std::strcmp(variant, "POSIX") == 0;
}

int32_t textLength(std::string_view text) {
  if (text.size() > static_cast<size_t>(INT32_MAX))
    throw Error(errInvalidProcedureCall, "Collator: a text of " + std::to_string(text.size()) +
                                             " bytes is too long to compare");
  return static_cast<int32_t>(text.size());
}

}  // namespace

Collator::Collator() {
  const char* userLocale = uloc_getDefault();
  open(isPosixLocale(userLocale) ? "" : userLocale, userLocale);
}

Collator::Collator(const std::string& localeName) {
  open(localeName.c_str(), localeName);
}

Collator::~Collator() {
  ucol_close(collator_);
}

void Collator::open(const char* localeId, const std::string& nameForErrors) {
  UErrorCode status = U_ZERO_ERROR;
  collator_ = ucol_open(localeId, &status);
  if (U_FAILURE(status)) {
    ucol_close(collator_);
    collator_ = nullptr;
    throw Error(errorNumberFor(status), "Collator: ICU cannot open the collation of the locale \"" +
                                            nameForErrors + "\" (" + u_errorName(status) + ")");
  }
  // Secondary strength: base letters and accents count, case does not.
  ucol_setStrength(collator_, UCOL_SECONDARY);
}

int32_t Collator::Compare(std::string_view left, std::string_view right) const {
  UErrorCode status = U_ZERO_ERROR;
  const UCollationResult result = ucol_strcollUTF8(collator_, left.data(), textLength(left),
                                                   right.data(), textLength(right), &status);
  if (U_FAILURE(status))
    throw Error(errorNumberFor(status), std::string("Collator: ICU cannot compare two texts (") +
                                            u_errorName(status) + ")");
  return result == UCOL_LESS ? -1 : result == UCOL_EQUAL ? 0 : 1;
}

std::string Collator::LocaleName() const {
  UErrorCode status = U_ZERO_ERROR;
  const char* name = ucol_getLocaleByType(collator_, ULOC_ACTUAL_LOCALE, &status);
  return U_SUCCESS(status) && name != nullptr ? name : "root";
}

}  // namespace velt
