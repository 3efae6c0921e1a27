#include "apps/velt/RunSession.hpp"

#include <algorithm>

#include "apps/velt/FocusSink.hpp"
#include "apps/velt/PropertyArgument.hpp"
#include "velt/controls/ControlRegistry.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/FormFile.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Error.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/UserControl.hpp"

namespace velt::tool {

namespace {

constexpr const char* kSinkName = "veltRunFocusSink";

Canvas crop(const Canvas& image, const RectL& rect) {
  const int32_t left = std::clamp(rect.Left, 0, image.ScaleWidth());
  const int32_t top = std::clamp(rect.Top, 0, image.ScaleHeight());
  const int32_t right = std::clamp(rect.Right, left, image.ScaleWidth());
  const int32_t bottom = std::clamp(rect.Bottom, top, image.ScaleHeight());
  Canvas result(right - left, bottom - top);
  for (int32_t y = top; y < bottom; ++y) {
    const uint32_t* from = image.Pixels() + static_cast<size_t>(y) * image.ScaleWidth() + left;
    std::copy(from, from + (right - left),
              result.Pixels() + static_cast<size_t>(y - top) * result.ScaleWidth());
  }
  return result;
}

}  // namespace

RunSession::RunSession(const FormFile& file, const ControlRegistry& registry)
    : registry_(registry) {
  system_ = std::make_shared<HeadlessWindowSystem>(std::max(kMinScreenWidth, file.Width + 1),
                                                   std::max(kMinScreenHeight, file.Height + 1));
  const SizeL screen = system_->ScreenSize();
  system_->SetCursor(screen.width - 1, screen.height - 1);
  form_ = file.CreateForm(system_, registry);
  system_->RunUntilIdle();
}

RunSession::~RunSession() = default;

Canvas RunSession::Snapshot() {
  return crop(system_->CompositeScreen(), form_->WindowRect());
}

void RunSession::WritePng(const std::string& path) {
  const Canvas image = Snapshot();
  Png::WriteRGB(path, image.Pixels(), image.ScaleWidth(), image.ScaleHeight());
}

void RunSession::DropHelpers() {
  if (!sink_) return;
  if (current_ == sink_) current_ = nullptr;
  sink_ = nullptr;
  form_->RemoveControl(kSinkName);
}

PointL RunSession::Origin() const {
  const RectL rect = form_->WindowRect();
  return PointL{rect.Left, rect.Top};
}

void RunSession::CheckProperty(const PropertyArgument& argument) const {
  if (form_->Sites().empty())
    throw Error(errInvalidProcedureCall, "the form has no control to set a property of");
  std::string firstProblem;
  int32_t firstNumber = 0;
  for (Site* site : form_->Sites()) {
    try {
      argument.ValueFor(registry_.ClassOf(*site->Control()));
      return;
    } catch (const Error& error) {
      if (firstProblem.empty()) {
        firstProblem = error.Description();
        firstNumber = error.Number();
      }
    }
  }
  throw Error(firstNumber, firstProblem);
}

void RunSession::SetProperty(const PropertyArgument& argument) {
  Site& site = currentSite();
  argument.ApplyTo(registry_.ClassOf(*site.Control()), *site.Control());
}

void RunSession::Focus() {
  currentSite().SetFocus();
}

void RunSession::Blur() {
  currentSite();  // remembers the control that loses the focus
  if (!sink_) sink_ = &form_->AddControl(std::make_shared<FocusSink>(), kSinkName, 0, 0, 0, 0);
  sink_->SetFocus();
}

Site& RunSession::currentSite() {
  Site* focused = form_->FocusedSite();
  if (focused && focused != sink_) current_ = focused;
  if (!current_) {
    for (Site* site : form_->Sites())
      if (site != sink_) {
        current_ = site;
        break;
      }
  }
  if (!current_) throw Error(errInvalidProcedureCall, "the form has no controls");
  return *current_;
}

}  // namespace velt::tool
