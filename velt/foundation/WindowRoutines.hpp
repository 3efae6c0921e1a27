#pragma once

#include <cstdint>

#include "velt/platform/TopLevelWindow.hpp"

namespace velt {

// The pop-up windows' translucency and shadow. Each is a fixed sequence of
// window requests; a request the window system cannot honour is skipped by
// the window itself.

// Makes the window layered, then sets its opacity (0..255).
void SetWindowAlpha(TopLevelWindow& window, uint8_t Alpha);

// Takes the layered style away, then repaints the whole window.
void RemoveWindowAlpha(TopLevelWindow& window);

// Gives the window a drop shadow.
void AddDropShadow(TopLevelWindow& window);

}  // namespace velt
