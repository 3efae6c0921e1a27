#pragma once

#include <string>

#include "velt/platform/Clipboard.hpp"

namespace velt {

// The desktop's clipboard through SDL; needs SDL's video subsystem open.
class SdlClipboard final : public Clipboard {
 public:
  SdlClipboard() = default;

  std::string GetText() const override;
  bool HasText() const override;
  void Clear() override;

 protected:
  // Error 5 with SDL's reason when the desktop refuses the text.
  void setText(const std::string& text) override;
};

}  // namespace velt
