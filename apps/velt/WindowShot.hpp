#pragma once

#include <string>

namespace velt {

class Form;
class SdlWindowSystem;

namespace tool {

// Puts the form's window in the middle of the screen (at the top-left corner
// when it is larger than the screen).
void CentreOnScreen(Form& form);

// Brings the windows up to date and writes what the active form's window
// shows, read back from the window itself, to a PNG. Error 5 when there is no
// form window.
void WriteWindowShot(SdlWindowSystem& system, const std::string& path);

}  // namespace tool
}  // namespace velt
