#include "velt/platform/Error.hpp"

namespace velt {

namespace {

std::string formatWhat(int32_t number, const std::string& description) {
  return "error " + std::to_string(number) + " (" + Error::StandardText(number) +
         "): " + description;
}

}  // namespace

Error::Error(int32_t number, const std::string& description)
    : std::runtime_error(formatWhat(number, description)),
      number_(number),
      description_(description) {}

const char* Error::StandardText(int32_t number) noexcept {
  switch (number) {
    case errInvalidProcedureCall:
      return "Invalid procedure call or argument";
    case errOverflow:
      return "Overflow";
    case errOutOfMemory:
      return "Out of memory";
    case errSubscriptOutOfRange:
      return "Subscript out of range";
    case errTypeMismatch:
      return "Type mismatch";
    case errObjectNotSet:
      return "Object variable not set";
    case errInvalidPropertyValue:
      return "Invalid property value";
    case errFileNotFound:
      return "File not found";
    case errPathFileAccess:
      return "Path/File access error";
    case errInvalidPicture:
      return "Invalid picture";
    case errKeyAlreadyExists:
      return "This key is already associated with an element of this collection";
    default:
      return "Application-defined error";
  }
}

}  // namespace velt
