#include "apps/velt/ScriptTarget.hpp"

#include "velt/platform/Error.hpp"

namespace velt::tool {

void ScriptTarget::CheckMenu() const {
  throw Error(errInvalidProcedureCall, "menu: there is no veltPUMenu to open");
}

void ScriptTarget::OpenMenu(PointL) {
  CheckMenu();
}

}  // namespace velt::tool
