#pragma once

#include <memory>
#include <string>
#include <utility>

#include "velt/platform/FileAttributes.hpp"

namespace velt {

// One search result: plain data, every property stores and returns its value
// unchanged. The attributes are set through Attrib and read through Attri.
class sf_InformationValue {
 public:
  sf_InformationValue();

  // The folder searched, ending in "/".
  const std::string& Path() const { return *path_; }
  void Path(std::string value) { path_ = shared(std::move(value)); }
  // The entry's name without folder.
  const std::string& Filename() const { return filename_; }
  void Filename(std::string value) { filename_ = std::move(value); }
  // Last modification, as the user's locale writes date and time.
  const std::string& DateTime() const { return *dateTime_; }
  void DateTime(std::string value) { dateTime_ = shared(std::move(value)); }
  FileAttributeSet Attri() const { return attributes_; }
  void Attrib(FileAttributeSet value) { attributes_ = value; }
  // Length in bytes as decimal digits; "0" for folders.
  const std::string& Size() const { return size_; }
  void Size(std::string value) { size_ = std::move(value); }

 private:
  // A scan makes many results in one folder and at one time: they share
  // those texts instead of holding a copy each.
  using SharedText = std::shared_ptr<const std::string>;
  friend class TreeScan;

  static SharedText shared(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
  }

  SharedText path_;
  std::string filename_;
  SharedText dateTime_;
  FileAttributeSet attributes_ = faNormal;
  std::string size_;
};

}  // namespace velt
