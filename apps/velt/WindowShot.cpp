#include "apps/velt/WindowShot.hpp"

#include <algorithm>

#include "velt/host/Form.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/WindowSystem.hpp"
#include "velt/platform/sdl/SdlWindowSystem.hpp"

namespace velt::tool {

void CentreOnScreen(Form& form) {
  const SizeL screen = form.System().ScreenSize();
  const RectL rect = form.WindowRect();
  form.MoveWindow(std::max(0, (screen.width - rect.Width()) / 2),
                  std::max(0, (screen.height - rect.Height()) / 2));
}

void WriteWindowShot(SdlWindowSystem& system, const std::string& path) {
  WindowSystem::FormClient* form = system.ActiveForm();
  if (!form) throw Error(errInvalidProcedureCall, "there is no form window to take a picture of");
  system.Present();
  const Canvas image = system.WindowImage(*form);
  Png::WriteRGB(path, image.Pixels(), image.ScaleWidth(), image.ScaleHeight());
}

}  // namespace velt::tool
