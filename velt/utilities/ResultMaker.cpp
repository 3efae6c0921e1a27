#include "velt/utilities/ResultMaker.hpp"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "velt/platform/DateTimeText.hpp"

namespace velt {

namespace {

constexpr size_t kFirstCapacity = 16;
// About 60 KB: below the size the C library maps on its own, so freed
// blocks are reused by the next scan rather than mapped afresh.
constexpr size_t kLargestCapacity = 512;

}  // namespace

// Results made one after the other in one piece of memory.
struct ResultMaker::Block {
  Block(std::shared_ptr<DateTimeText> formatter, size_t size)
      : dates(std::move(formatter)),
        capacity(size),
        values(std::allocator<sf_InformationValue>().allocate(size)) {}
  ~Block() {
    std::destroy_n(values, used);
    std::allocator<sf_InformationValue>().deallocate(values, capacity);
  }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;

  std::shared_ptr<DateTimeText> dates;
  size_t capacity;
  size_t used = 0;
  sf_InformationValue* values;
};

ResultMaker::ResultMaker()
    : dates_(std::make_shared<DateTimeText>()), nextCapacity_(kFirstCapacity) {}

ResultMaker::~ResultMaker() = default;

void ResultMaker::Add(sf_Information& results, const std::shared_ptr<const std::string>& path,
                      const DirectoryEntry& entry, std::string_view key) {
  if (!block_ || block_->used == block_->capacity) {
    block_ = std::make_shared<Block>(dates_, nextCapacity_);
    nextCapacity_ = std::min(2 * nextCapacity_, kLargestCapacity);
  }
  Block& block = *block_;
  sf_InformationValue* value =
      ::new (static_cast<void*>(block.values + block.used)) sf_InformationValue(
          path, entry.Name, *dates_, entry.ModifiedSeconds, entry.Attributes, entry.Size);
  ++block.used;
  results.append(std::shared_ptr<sf_InformationValue>(block_, value), key);
}

}  // namespace velt
