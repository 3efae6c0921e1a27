#include "velt/host/DispatchScope.hpp"

#include <utility>

#include "velt/host/FormWindow.hpp"

namespace velt {

DispatchScope::DispatchScope(std::shared_ptr<FormWindow> form) : form_(std::move(form)) {
  if (form_) form_->enterDispatch();
}

DispatchScope::~DispatchScope() {
  if (form_) form_->leaveDispatch();
}

}  // namespace velt
