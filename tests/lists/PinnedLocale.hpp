#pragma once

#include <gtest/gtest.h>
#include <unicode/locid.h>

// Sets ICU's default locale (the "user's locale" of the collation) for one
// test and puts the previous one back afterwards.
class PinnedLocale : public ::testing::Test {
 protected:
  void SetUp() override {
    saved_ = icu::Locale::getDefault();
    Pin("en_US");
  }
  void TearDown() override {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(saved_, status);
  }

  static void Pin(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale::setDefault(icu::Locale(name), status);
    ASSERT_TRUE(U_SUCCESS(status)) << u_errorName(status);
    ASSERT_STREQ(icu::Locale::getDefault().getName(), name);
  }

 private:
  icu::Locale saved_;
};
