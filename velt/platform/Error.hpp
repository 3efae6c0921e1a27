#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace velt {

// The classic runtime error numbers the library raises.
enum ErrorNumber : int32_t {
  errInvalidProcedureCall = 5,
  errOverflow = 6,
  errOutOfMemory = 7,
  errSubscriptOutOfRange = 9,
  errTypeMismatch = 13,
  errObjectNotSet = 91,
  errInvalidPropertyValue = 380,
  errFileNotFound = 53,
  errPathFileAccess = 75,
  errKeyAlreadyExists = 457,
  errInvalidPicture = 481,
};

// The one error type of the library. what() reads "error N: message"; Number()
// and Description() give the two parts on their own.
class Error : public std::runtime_error {
 public:
  Error(int32_t number, const std::string& description);

  int32_t Number() const noexcept { return number_; }
  const std::string& Description() const noexcept { return description_; }

  // The short standard text of a number ("Type mismatch"), or "Application-defined error".
  static const char* StandardText(int32_t number) noexcept;

 private:
  int32_t number_;
  std::string description_;
};

}  // namespace velt
