#include "apps/velt/HeadlessSession.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "apps/velt/EventLine.hpp"
#include "apps/velt/FocusSink.hpp"
#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Clipboard.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Png.hpp"
#include "velt/platform/Variant.hpp"

namespace velt::tool {

namespace {

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

HeadlessSession::HeadlessSession(SizeL formSize, const char* sinkName)
    : sinkName_(sinkName),
      system_(
          std::make_shared<HeadlessWindowSystem>(std::max(kMinScreenWidth, formSize.width + 1),
                                                 std::max(kMinScreenHeight, formSize.height + 1))) {
  const SizeL screen = system_->ScreenSize();
  system_->SetCursor(screen.width - 1, screen.height - 1);
}

HeadlessSession::~HeadlessSession() = default;

void HeadlessSession::adoptForm(std::unique_ptr<Form> form) {
  form_ = std::move(form);
}

void HeadlessSession::PrintShellRequests(std::ostream& out) {
  shellPrinter_ =
      system_->ShellOpened.connect([&out](const HeadlessWindowSystem::ShellRequest& request) {
        const std::string operation = request.Operation.empty() ? "Open" : request.Operation;
        std::vector<Variant> arguments{Variant(request.File)};
        if (!request.Parameters.empty()) arguments.emplace_back(request.Parameters);
        out << EventLine::Format("shell." + operation, arguments) << std::endl;
      });
}

void HeadlessSession::PrintClipboard(std::ostream& out) {
  const Clipboard& clipboard = system_->Clipboard();
  if (!clipboard.HasText()) return;
  const std::vector<Variant> arguments{Variant(clipboard.GetText())};
  out << EventLine::Format("clipboard", arguments) << std::endl;
}

void HeadlessSession::WritePng(const std::string& path) {
  const Canvas image = Snapshot();
  Png::WriteRGB(path, image.Pixels(), image.ScaleWidth(), image.ScaleHeight());
}

PointL HeadlessSession::Origin() const {
  const RectL rect = form_->WindowRect();
  return PointL{rect.Left, rect.Top};
}

void HeadlessSession::Blur() {
  if (!sink_) sink_ = &form_->AddControl(std::make_shared<FocusSink>(), sinkName_, 0, 0, 0, 0);
  sink_->SetFocus();
}

Canvas HeadlessSession::screenPart(const RectL& rect) const {
  return crop(system_->CompositeScreen(), rect);
}

void HeadlessSession::dropSink() {
  if (!sink_) return;
  sink_ = nullptr;
  form_->RemoveControl(sinkName_);
}

}  // namespace velt::tool
