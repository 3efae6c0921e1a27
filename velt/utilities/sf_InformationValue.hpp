#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "velt/platform/FileAttributes.hpp"

namespace velt {

class DateTimeText;

// One search result: plain data, every property stores and returns its value
// unchanged. The attributes are set through Attrib and read through Attri.
class sf_InformationValue {
 public:
  sf_InformationValue();
  // A copy has the same texts; a DateTime still to be written is written
  // first, because the formatter belongs to the original's search.
  sf_InformationValue(const sf_InformationValue& other);
  sf_InformationValue& operator=(const sf_InformationValue& other);
  ~sf_InformationValue();

  // The folder searched, ending in "/".
  const std::string& Path() const { return *path_; }
  void Path(std::string value) { path_ = shared(std::move(value)); }
  // The entry's name without folder.
  const std::string& Filename() const { return filename_; }
  void Filename(std::string value) { filename_ = std::move(value); }
  // Last modification, as the user's locale writes date and time (the
  // locale and time zone of the moment the search ran). A search's results
  // write it when first read, with a formatter they share: read them from
  // one thread at a time.
  const std::string& DateTime() const;
  void DateTime(std::string value);
  FileAttributeSet Attri() const { return attributes_; }
  void Attrib(FileAttributeSet value) { attributes_ = value; }
  // Length in bytes as decimal digits; "0" for folders.
  const std::string& Size() const { return size_; }
  void Size(std::string value) { size_ = std::move(value); }

 private:
  // A scan makes many results in one folder and at one time: they share
  // those texts instead of holding a copy each.
  using SharedText = std::shared_ptr<const std::string>;
  friend class ResultMaker;

  static SharedText shared(std::string text) {
    return std::make_shared<const std::string>(std::move(text));
  }

  // Sets everything a search finds. The date is written from seconds by
  // dates when first read: most results of a scan are never asked for it,
  // and writing it costs more than finding the file. dates must outlive
  // this object, which only a ResultMaker's blocks guarantee.
  sf_InformationValue(const SharedText& path, std::string_view filename, DateTimeText& dates,
                      int64_t modifiedSeconds, FileAttributeSet attributes, int64_t size);

  SharedText path_;
  std::string filename_;
  std::string size_;
  // Nothing while dates_ has still to write it.
  mutable SharedText dateTime_;
  mutable DateTimeText* dates_ = nullptr;
  int64_t modifiedSeconds_ = 0;
  FileAttributeSet attributes_ = faNormal;
};

}  // namespace velt
