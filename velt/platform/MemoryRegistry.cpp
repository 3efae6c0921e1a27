#include "velt/platform/MemoryRegistry.hpp"

#include <algorithm>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

std::string lowerAscii(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

// "Software\\Foo\" -> "software\foo": lower case, one separator between parts.
std::string normalizePath(const std::string& path) {
  std::string result;
  std::string part;
  auto flush = [&] {
    if (part.empty()) return;
    if (!result.empty()) result += '\\';
    result += lowerAscii(part);
    part.clear();
  };
  for (char c : path) {
    if (c == '\\') {
      flush();
    } else {
      part += c;
    }
  }
  flush();
  return result;
}

std::string joinPath(const std::string& base, const std::string& relative) {
  if (relative.empty()) return base;
  return base + '\\' + relative;
}

}  // namespace

std::string MemoryRegistry::rootPath(HKEY root) const {
  if (!IsPredefinedRoot(root)) {
    throw Error(errInvalidProcedureCall,
                "MemoryRegistry: " + std::to_string(root) + " is not a predefined registry root");
  }
  return "#" + std::to_string(root);
}

MemoryRegistry::Values& MemoryRegistry::createKeyLocked(HKEY root, const std::string& subKey) {
  const std::string relative = normalizePath(subKey);
  std::string path = rootPath(root);
  keys_[path];
  std::size_t start = 0;
  while (start < relative.size()) {
    std::size_t end = relative.find('\\', start);
    if (end == std::string::npos) end = relative.size();
    path = joinPath(path, relative.substr(start, end - start));
    keys_[path];
    start = end + 1;
  }
  return keys_[path];
}

void MemoryRegistry::CreateKey(HKEY root, const std::string& subKey) {
  std::lock_guard<std::mutex> lock(mutex_);
  createKeyLocked(root, subKey);
}

void MemoryRegistry::SetValue(HKEY root, const std::string& subKey, const std::string& name,
                              uint32_t type, const std::vector<uint8_t>& bytes) {
  std::lock_guard<std::mutex> lock(mutex_);
  createKeyLocked(root, subKey)[lowerAscii(name)] = Value{type, bytes};
}

void MemoryRegistry::SetValue(HKEY root, const std::string& subKey, const std::string& name,
                              uint32_t type, const std::string& text) {
  std::vector<uint8_t> bytes(text.begin(), text.end());
  bytes.push_back(0);
  SetValue(root, subKey, name, type, bytes);
}

void MemoryRegistry::SetValue(HKEY root, const std::string& subKey, const std::string& name,
                              const std::string& text) {
  SetValue(root, subKey, name, REG_SZ, text);
}

int32_t MemoryRegistry::OpenKey(HKEY root, const std::string& subKey, HKEY& result) {
  std::lock_guard<std::mutex> lock(mutex_);
  result = 0;
  std::string base;
  if (IsPredefinedRoot(root)) {
    base = rootPath(root);
  } else {
    auto handle = handles_.find(root);
    if (handle == handles_.end()) return ERROR_INVALID_HANDLE;
    base = handle->second;
  }
  const std::string path = joinPath(base, normalizePath(subKey));
  if (keys_.find(path) == keys_.end()) return ERROR_FILE_NOT_FOUND;
  // Handles are never reused, so a stale handle can never reach another key.
  // The numbers stay below the predefined roots; running out would take two
  // billion opens.
  if (nextHandle_ >= HKEY_CLASSES_ROOT) {
    throw Error(errOverflow, "MemoryRegistry: out of key handles");
  }
  result = nextHandle_++;
  handles_[result] = path;
  ++openCount_;
  return ERROR_SUCCESS;
}

int32_t MemoryRegistry::QueryValue(HKEY key, const std::string& valueName, uint32_t& type,
                                   std::vector<uint8_t>* data, uint32_t& size) {
  std::lock_guard<std::mutex> lock(mutex_);
  auto handle = handles_.find(key);
  if (handle == handles_.end()) return ERROR_INVALID_HANDLE;
  auto keyValues = keys_.find(handle->second);
  if (keyValues == keys_.end()) return ERROR_FILE_NOT_FOUND;
  auto found = keyValues->second.find(lowerAscii(valueName));
  if (found == keyValues->second.end()) return ERROR_FILE_NOT_FOUND;
  const Value& value = found->second;
  type = value.type;
  const auto needed = static_cast<uint32_t>(value.bytes.size());
  if (data == nullptr) {
    size = needed;
    return ERROR_SUCCESS;
  }
  if (size < needed) {
    size = needed;
    return ERROR_MORE_DATA;
  }
  if (data->size() < size) data->resize(size);
  std::copy(value.bytes.begin(), value.bytes.end(), data->begin());
  size = needed;
  return ERROR_SUCCESS;
}

int32_t MemoryRegistry::CloseKey(HKEY key) {
  if (IsPredefinedRoot(key)) return ERROR_SUCCESS;
  std::lock_guard<std::mutex> lock(mutex_);
  if (handles_.erase(key) == 0) return ERROR_INVALID_HANDLE;
  ++closeCount_;
  return ERROR_SUCCESS;
}

int32_t MemoryRegistry::OpenCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return openCount_;
}

int32_t MemoryRegistry::CloseCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return closeCount_;
}

int32_t MemoryRegistry::OpenHandleCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return static_cast<int32_t>(handles_.size());
}

}  // namespace velt
