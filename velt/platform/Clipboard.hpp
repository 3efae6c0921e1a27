#pragma once

#include <string>

namespace velt {

// The desktop's clipboard, text only. Each window system has one: the SDL
// backend's is the desktop's own, the headless one keeps the text in memory.
// Text is UTF-8; SetText checks that before anything reaches the clipboard.
class Clipboard {
 public:
  virtual ~Clipboard();

  // The text on the clipboard; empty when it holds none (or no text).
  virtual std::string GetText() const = 0;
  virtual bool HasText() const = 0;
  // Error 5 for text that is not valid UTF-8 or holds a NUL character.
  void SetText(const std::string& text);
  virtual void Clear() = 0;

  // Error 5 naming the caller and the offending byte when text is not UTF-8
  // or holds a NUL character.
  static void CheckUtf8(const char* where, const std::string& text);

 protected:
  Clipboard() = default;
  Clipboard(const Clipboard&) = delete;
  Clipboard& operator=(const Clipboard&) = delete;

  virtual void setText(const std::string& text) = 0;
};

}  // namespace velt
