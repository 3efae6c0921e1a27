#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "velt/platform/Picture.hpp"

namespace velt {

class ImageList;

// One image of an ImageList. Once removed from its list it keeps its picture but
// has no index and no mask to apply.
class ListImage {
 public:
  ListImage(const ImageList* owner, int32_t index, std::string key,
            std::shared_ptr<velt::Picture> picture);

  int32_t Index() const { return index_; }  // 0 once removed from the list
  const std::string& Key() const { return key_; }
  std::shared_ptr<velt::Picture> Picture() const { return picture_; }

  // A new picture (with its own handle) each call; with the list's UseMaskColor
  // on, pixels of MaskColor become fully transparent. Error 91 once removed.
  std::shared_ptr<velt::Picture> ExtractIcon() const;

 private:
  friend class ListImages;

  void detach() {
    owner_ = nullptr;
    index_ = 0;
  }

  const ImageList* owner_;
  int32_t index_;
  std::string key_;
  std::shared_ptr<velt::Picture> picture_;
};

}  // namespace velt
