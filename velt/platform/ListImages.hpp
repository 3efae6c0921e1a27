#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "velt/platform/ListImage.hpp"
#include "velt/platform/Picture.hpp"

namespace velt {

class ImageList;

// The images of one ImageList, in order; positions are 1-based.
class ListImages {
 public:
  explicit ListImages(ImageList& owner);
  ListImages(const ListImages&) = delete;
  ListImages& operator=(const ListImages&) = delete;
  ~ListImages();

  int32_t Count() const { return static_cast<int32_t>(items_.size()); }
  std::shared_ptr<ListImage> Item(int32_t index) const;           // error 9 outside 1..Count
  std::shared_ptr<ListImage> Item(const std::string& key) const;  // error 9 for an unknown key

  // Adds the picture, scaled to the list's image size when it has another size
  // (the first image sets sizes not yet set). Error 91 for no picture, 457 for a
  // key already in use.
  std::shared_ptr<ListImage> Add(std::shared_ptr<Picture> picture, const std::string& key = "");
  std::shared_ptr<ListImage> Add(const std::string& pngPath, const std::string& key = "");

  void Remove(int32_t index);
  void Remove(const std::string& key);
  void Clear();

 private:
  void checkIndex(int32_t index) const;
  void renumber();

  ImageList& owner_;
  std::vector<std::shared_ptr<ListImage>> items_;
};

}  // namespace velt
