#pragma once

#include <string>

#include "velt/platform/Clipboard.hpp"

namespace velt {

// A clipboard of the process's own, for the headless window system and tests.
class MemoryClipboard final : public Clipboard {
 public:
  MemoryClipboard() = default;

  std::string GetText() const override { return text_; }
  bool HasText() const override { return !text_.empty(); }
  void Clear() override { text_.clear(); }

 protected:
  void setText(const std::string& text) override { text_ = text; }

 private:
  std::string text_;
};

}  // namespace velt
