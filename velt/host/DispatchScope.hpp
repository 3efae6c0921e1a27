#pragma once

#include <memory>

namespace velt {

class FormWindow;

// Marks a call from the host into the controls of one form. While a scope is
// open the form's core stays alive, and so does every control removed
// meanwhile: a handler may remove the very control that raised it, or destroy
// the whole form, and the control's code still running below it finds its
// host and itself intact. The last scope to close releases what was removed.
class DispatchScope {
 public:
  DispatchScope() = default;  // guards nothing
  explicit DispatchScope(std::shared_ptr<FormWindow> form);
  ~DispatchScope();
  DispatchScope(DispatchScope&& other) noexcept = default;
  DispatchScope& operator=(DispatchScope&&) = delete;
  DispatchScope(const DispatchScope&) = delete;
  DispatchScope& operator=(const DispatchScope&) = delete;

 private:
  std::shared_ptr<FormWindow> form_;
};

}  // namespace velt
