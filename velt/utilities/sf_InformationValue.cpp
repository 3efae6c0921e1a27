#include "velt/utilities/sf_InformationValue.hpp"

#include "velt/platform/DateTimeText.hpp"

namespace velt {

namespace {

const std::shared_ptr<const std::string>& emptyText() {
  static const auto empty = std::make_shared<const std::string>();
  return empty;
}

}  // namespace

sf_InformationValue::sf_InformationValue() : path_(emptyText()), dateTime_(emptyText()) {}

sf_InformationValue::sf_InformationValue(const SharedText& path, std::string_view filename,
                                         DateTimeText& dates, int64_t modifiedSeconds,
                                         FileAttributeSet attributes, int64_t size)
    : path_(path),
      filename_(filename),
      size_(std::to_string(size)),
      dates_(&dates),
      modifiedSeconds_(modifiedSeconds),
      attributes_(attributes) {}

sf_InformationValue::sf_InformationValue(const sf_InformationValue& other)
    : path_(other.path_),
      filename_(other.filename_),
      size_(other.size_),
      attributes_(other.attributes_) {
  other.DateTime();
  dateTime_ = other.dateTime_;
}

sf_InformationValue& sf_InformationValue::operator=(const sf_InformationValue& other) {
  if (this == &other) return *this;
  other.DateTime();
  path_ = other.path_;
  filename_ = other.filename_;
  size_ = other.size_;
  dateTime_ = other.dateTime_;
  dates_ = nullptr;
  attributes_ = other.attributes_;
  return *this;
}

sf_InformationValue::~sf_InformationValue() = default;

const std::string& sf_InformationValue::DateTime() const {
  if (dates_ != nullptr) {
    dateTime_ = dates_->SharedText(modifiedSeconds_);
    dates_ = nullptr;
  }
  return *dateTime_;
}

void sf_InformationValue::DateTime(std::string value) {
  dateTime_ = shared(std::move(value));
  dates_ = nullptr;
}

}  // namespace velt
