#include "apps/velt/ScriptTarget.hpp"

#include "velt/platform/Error.hpp"

namespace velt::tool {

void ScriptTarget::CheckMenu() const {
  throw Error(errInvalidProcedureCall, "menu: there is no veltPUMenu to open");
}

void ScriptTarget::OpenMenu(PointL) {
  CheckMenu();
}

void ScriptTarget::CheckGet(const std::string& name) const {
  throw Error(errInvalidProcedureCall, "get " + name + ": there is no control to read");
}

Variant ScriptTarget::GetProperty(const std::string& name) {
  CheckGet(name);
  return Variant();
}

}  // namespace velt::tool
