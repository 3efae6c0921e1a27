#include "velt/platform/RegistryView.hpp"

#include <mutex>

#include "velt/platform/LinuxRegistry.hpp"

namespace velt {

namespace {

std::mutex& currentMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<RegistryView>& currentView() {
  static std::shared_ptr<RegistryView> view;
  return view;
}

}  // namespace

RegistryView::~RegistryView() = default;

std::shared_ptr<RegistryView> RegistryView::Current() {
  std::lock_guard<std::mutex> lock(currentMutex());
  std::shared_ptr<RegistryView>& view = currentView();
  // Built on first use, so a process that never reads the registry never
  // reads the desktop's configuration files either.
  if (!view) view = std::make_shared<LinuxRegistry>(LinuxRegistry::Locations::FromEnvironment());
  return view;
}

void RegistryView::Use(std::shared_ptr<RegistryView> view) {
  std::lock_guard<std::mutex> lock(currentMutex());
  currentView() = std::move(view);
}

}  // namespace velt
