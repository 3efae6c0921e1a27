#include "velt/utilities/sf_InformationValue.hpp"

namespace velt {

namespace {

const std::shared_ptr<const std::string>& emptyText() {
  static const auto empty = std::make_shared<const std::string>();
  return empty;
}

}  // namespace

sf_InformationValue::sf_InformationValue() : path_(emptyText()), dateTime_(emptyText()) {}

}  // namespace velt
