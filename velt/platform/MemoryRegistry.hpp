#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "velt/platform/RegistryView.hpp"

namespace velt {

// A registry held in memory: what tests install with RegistryView::Use, and the
// store behind the desktop's view. Key paths and value names compare without
// regard to ASCII letter case; empty path parts ("a\\b", a leading "\") are
// ignored. It counts the handles it hands out and takes back, so a caller can
// check that every key it opened was closed.
class MemoryRegistry : public RegistryView {
 public:
  MemoryRegistry() = default;

  // Creates the key and every key above it; error 5 for a root that is not
  // one of the predefined roots.
  void CreateKey(HKEY root, const std::string& subKey);
  // Stores a value (creating its key) with exactly these bytes.
  void SetValue(HKEY root, const std::string& subKey, const std::string& name, uint32_t type,
                const std::vector<uint8_t>& bytes);
  // Stores text of the given type the way the classic registry does: the
  // characters followed by one NUL. A REG_MULTI_SZ text carries its own
  // separating NULs; the final one is added here.
  void SetValue(HKEY root, const std::string& subKey, const std::string& name, uint32_t type,
                const std::string& text);
  // A REG_SZ value.
  void SetValue(HKEY root, const std::string& subKey, const std::string& name,
                const std::string& text);

  int32_t OpenKey(HKEY root, const std::string& subKey, HKEY& result) override;
  int32_t QueryValue(HKEY key, const std::string& valueName, uint32_t& type,
                     std::vector<uint8_t>* data, uint32_t& size) override;
  int32_t CloseKey(HKEY key) override;

  // Handles handed out by OpenKey so far, handles taken back by CloseKey, and
  // handles open right now.
  int32_t OpenCount() const;
  int32_t CloseCount() const;
  int32_t OpenHandleCount() const;

 private:
  struct Value {
    uint32_t type = REG_NONE;
    std::vector<uint8_t> bytes;
  };
  using Values = std::map<std::string, Value>;  // by lower-case name

  std::string rootPath(HKEY root) const;  // throws for a non-root
  Values& createKeyLocked(HKEY root, const std::string& subKey);

  mutable std::mutex mutex_;
  std::map<std::string, Values> keys_;  // by normalized full path
  std::map<HKEY, std::string> handles_;
  HKEY nextHandle_ = 1;
  int32_t openCount_ = 0;
  int32_t closeCount_ = 0;
};

}  // namespace velt
