#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velt {

// A key handle. The predefined roots carry their classic values so that code
// written against the classic registry passes the same numbers.
using HKEY = uint32_t;

inline constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000u;
inline constexpr HKEY HKEY_CURRENT_USER = 0x80000001u;
inline constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002u;
inline constexpr HKEY HKEY_USERS = 0x80000003u;

// The registry as the library reads it: a tree of keys ("\"-separated paths,
// case-insensitive) holding named, typed values. The calls mirror the classic
// open / query / close sequence and answer with its status codes instead of
// throwing, because the callers decide per status what to do.
class RegistryView {
 public:
  // Value types.
  static constexpr uint32_t REG_NONE = 0;
  static constexpr uint32_t REG_SZ = 1;
  static constexpr uint32_t REG_EXPAND_SZ = 2;
  static constexpr uint32_t REG_BINARY = 3;
  static constexpr uint32_t REG_DWORD = 4;
  static constexpr uint32_t REG_MULTI_SZ = 7;

  // Status codes.
  static constexpr int32_t ERROR_SUCCESS = 0;
  static constexpr int32_t ERROR_FILE_NOT_FOUND = 2;  // no such key or value
  static constexpr int32_t ERROR_INVALID_HANDLE = 6;
  static constexpr int32_t ERROR_MORE_DATA = 234;  // the buffer offered is too small

  virtual ~RegistryView();

  // Opens subKey below root (a predefined root or a handle opened before). On
  // success `result` receives a new handle that must be closed with CloseKey;
  // on failure it is set to 0.
  virtual int32_t OpenKey(HKEY root, const std::string& subKey, HKEY& result) = 0;

  // Reads the value valueName ("" is the key's default value) of an open key.
  // Without a buffer (data == nullptr) it only reports the type and the byte
  // size. With one, `size` is the number of bytes the caller offers (the view
  // grows *data to that length when it is shorter): if the value is larger the
  // call answers ERROR_MORE_DATA and sets size to the bytes needed, else it
  // copies the bytes to the front of *data and sets size to their count.
  virtual int32_t QueryValue(HKEY key, const std::string& valueName, uint32_t& type,
                             std::vector<uint8_t>* data, uint32_t& size) = 0;

  // Closes a handle from OpenKey. Closing a predefined root does nothing.
  virtual int32_t CloseKey(HKEY key) = 0;

  static bool IsPredefinedRoot(HKEY key) { return key >= HKEY_CLASSES_ROOT && key <= HKEY_USERS; }

  // The view the whole process reads through. Until Use() installs another, it
  // is the desktop's own view (LinuxRegistry over the current user's folders).
  static std::shared_ptr<RegistryView> Current();
  // Installs a view for the whole process; nullptr goes back to the default.
  static void Use(std::shared_ptr<RegistryView> view);

 protected:
  RegistryView() = default;
  RegistryView(const RegistryView&) = delete;
  RegistryView& operator=(const RegistryView&) = delete;
};

}  // namespace velt
