#pragma once

namespace velt {

// Base of everything a Variant can hold as an object reference (image lists,
// controls handed around by reference). Only identity and lifetime matter here.
class Object {
 public:
  virtual ~Object() = default;

 protected:
  Object() = default;
  Object(const Object&) = default;
  Object& operator=(const Object&) = default;
};

}  // namespace velt
