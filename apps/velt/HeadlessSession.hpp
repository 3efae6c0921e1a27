#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "apps/velt/ScriptTarget.hpp"
#include "velt/platform/Canvas.hpp"
#include "velt/platform/Event.hpp"
#include "velt/platform/Geometry.hpp"

namespace velt {

class Form;
class HeadlessWindowSystem;
class Site;

namespace tool {

// A form on a headless window system, its client area at the screen's origin:
// what `velt snap` and `velt run --headless` play scripts on. The screen is at
// least 1024x768 and one pixel wider and taller than the form, and the pointer
// starts on its bottom-right pixel, off the form. Blur gives the focus to a
// helper control of no size, made the first time.
class HeadlessSession : public ScriptTarget {
 public:
  static constexpr int32_t kMinScreenWidth = 1024;
  static constexpr int32_t kMinScreenHeight = 768;

  ~HeadlessSession() override;
  HeadlessSession(const HeadlessSession&) = delete;
  HeadlessSession& operator=(const HeadlessSession&) = delete;

  HeadlessWindowSystem& System() { return *system_; }
  Form& HostForm() const { return *form_; }
  // From now on writes a line to out for every document or address a control
  // asks the desktop to open, which a headless run records and does not open:
  // `shell.Open "https://example.org/"`.
  void PrintShellRequests(std::ostream& out);
  // The clipboard's text as the line clipboard "TEXT", when it holds any.
  void PrintClipboard(std::ostream& out);

  // What a PNG of the session shows.
  virtual Canvas Snapshot() = 0;
  void WritePng(const std::string& path);

  // ScriptTarget.
  PointL Origin() const override;
  void Blur() override;
  void Shot(const std::string& path) override { WritePng(path); }

 protected:
  // `formSize` sizes the screen; `sinkName` names the helper control.
  HeadlessSession(SizeL formSize, const char* sinkName);

  const std::shared_ptr<HeadlessWindowSystem>& system() const { return system_; }
  void adoptForm(std::unique_ptr<Form> form);
  // The screen's composite cut to `rect`.
  Canvas screenPart(const RectL& rect) const;
  Site* sink() const { return sink_; }
  void dropSink();

 private:
  const char* sinkName_;
  std::shared_ptr<HeadlessWindowSystem> system_;
  std::unique_ptr<Form> form_;
  Site* sink_ = nullptr;
  Connection shellPrinter_;
};

}  // namespace tool
}  // namespace velt
