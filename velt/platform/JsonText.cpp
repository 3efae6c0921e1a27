#include "velt/platform/JsonText.hpp"

#include <algorithm>
#include <new>
#include <unordered_set>
#include <utility>

#include "velt/platform/Error.hpp"

namespace velt {

namespace {

using Json = nlohmann::ordered_json;
constexpr size_t kMaxPointerPart = 60;
constexpr size_t kMaxPointerParts = 16;

std::string withoutLibraryPrefix(const std::string& message) {
  // nlohmann's messages start with "[json.exception.parse_error.101] ".
  if (!message.empty() && message.front() == '[') {
    const auto end = message.find("] ");
    if (end != std::string::npos) return message.substr(end + 2);
  }
  return message;
}

size_t characterBoundary(std::string_view text, size_t at) {
  while (at > 0 && at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80)
    --at;
  return at;
}

// Frees a document without allocating: the library's own destructor takes a
// list as long as the largest array to walk it, which fails when memory has
// just run out. The depth limit bounds this recursion.
void releaseWithoutAllocating(Json& value) {
  if (value.is_array()) {
    auto& items = value.get_ref<Json::array_t&>();
    while (!items.empty()) {
      releaseWithoutAllocating(items.back());
      items.pop_back();
    }
  } else if (value.is_object()) {
    auto& members = value.get_ref<Json::object_t&>();
    while (!members.empty()) {
      releaseWithoutAllocating(members.back().second);
      members.pop_back();
    }
  }
}

// The DOM builder of the library with a watch on depth and keys; it keeps the
// path to where it is, for messages.
class CheckedBuilder {
 public:
  explicit CheckedBuilder(Json& result) : result_(result), dom_(result, true) {}

  // Memory ran out: what was built is freed first, so that the message can be
  // made and the unwinding needs no memory.
  [[noreturn]] void outOfMemory() {
    releaseWithoutAllocating(result_);
    fail(errOutOfMemory, "out of memory");
  }

  bool null() {
    return guarded([&] { return value() && dom_.null(); });
  }
  bool boolean(bool v) {
    return guarded([&] { return value() && dom_.boolean(v); });
  }
  bool number_integer(Json::number_integer_t v) {
    return guarded([&] { return value() && dom_.number_integer(v); });
  }
  bool number_unsigned(Json::number_unsigned_t v) {
    return guarded([&] { return value() && dom_.number_unsigned(v); });
  }
  bool number_float(Json::number_float_t v, const std::string& s) {
    return guarded([&] { return value() && dom_.number_float(v, s); });
  }
  bool string(std::string& v) {
    return guarded([&] { return value() && dom_.string(v); });
  }
  bool binary(Json::binary_t& v) {
    return guarded([&] { return value() && dom_.binary(v); });
  }

  bool start_object(size_t count) {
    return guarded([&] {
      value();
      open(false);
      return dom_.start_object(count);
    });
  }
  bool key(std::string& name) {
    return guarded([&] {
      Level& level = levels_.back();
      level.part = name;
      if (!level.keys.insert(name).second)
        fail(errTypeMismatch, "the key " + QuotedPrefix(name) + " appears twice");
      return dom_.key(name);
    });
  }
  bool end_object() {
    levels_.pop_back();
    return dom_.end_object();
  }
  bool start_array(size_t count) {
    return guarded([&] {
      value();
      open(true);
      return dom_.start_array(count);
    });
  }
  bool end_array() {
    levels_.pop_back();
    return dom_.end_array();
  }

  bool parse_error(size_t, const std::string&, const nlohmann::detail::exception& error) {
    throw Error(errTypeMismatch, "/: not valid JSON: " + withoutLibraryPrefix(error.what()));
  }

 private:
  struct Level {
    bool array = false;
    size_t next = 0;  // the index of the next element of an array
    std::string part;
    std::unordered_set<std::string> keys;
  };

  bool value() {
    if (!levels_.empty() && levels_.back().array)
      levels_.back().part = std::to_string(levels_.back().next++);
    return true;
  }

  void open(bool array) {
    if (levels_.size() >= kMaxJsonDepth)
      fail(errTypeMismatch, "nested deeper than " + std::to_string(kMaxJsonDepth) + " levels");
    levels_.push_back(Level{array, 0, {}, {}});
  }

  // The pointer of the value being read: each open level's current element.
  [[noreturn]] void fail(int32_t number, const std::string& problem) const {
    std::vector<std::string> parts;
    parts.reserve(levels_.size());
    for (const Level& level : levels_)
      parts.push_back(level.part);
    throw Error(number, JsonPointerText(parts) + ": " + problem);
  }

  // Memory running out while the document is built is reported with the place.
  template <class Step>
  bool guarded(Step step) {
    try {
      return step();
    } catch (const std::bad_alloc&) {
      outOfMemory();
    }
  }

  Json& result_;
  nlohmann::detail::json_sax_dom_parser<Json> dom_;
  std::vector<Level> levels_;
};

}  // namespace

Json ParseJsonText(std::string_view text) {
  Json result;
  CheckedBuilder builder(result);
  try {
    Json::sax_parse(text.begin(), text.end(), &builder);
  } catch (const Json::exception& error) {
    throw Error(errTypeMismatch, "/: not valid JSON: " + withoutLibraryPrefix(error.what()));
  } catch (const std::bad_alloc&) {
    builder.outOfMemory();
  }
  return result;
}

std::string JsonPointerText(const std::vector<std::string>& parts) {
  if (parts.empty()) return "/";
  const auto append = [](std::string& pointer, const std::string& whole) {
    pointer += '/';
    const std::string_view part(whole.data(),
                                characterBoundary(whole, std::min(whole.size(), kMaxPointerPart)));
    for (char c : part) {
      if (c == '~')
        pointer += "~0";
      else if (c == '/')
        pointer += "~1";
      else
        pointer += c;
    }
    if (part.size() < whole.size()) pointer += "...";
  };
  std::string pointer;
  if (parts.size() <= kMaxPointerParts) {
    for (const std::string& part : parts)
      append(pointer, part);
    return pointer;
  }
  // A deep place: its first and last steps, and how deep it is.
  for (size_t i = 0; i < kMaxPointerParts - 4; ++i)
    append(pointer, parts[i]);
  pointer += "/...";
  for (size_t i = parts.size() - 4; i < parts.size(); ++i)
    append(pointer, parts[i]);
  return pointer + " (" + std::to_string(parts.size()) + " levels)";
}

std::string QuotedPrefix(std::string_view text, size_t maxBytes) {
  if (text.size() <= maxBytes) return "\"" + std::string(text) + "\"";
  const size_t cut = characterBoundary(text, maxBytes);
  return "\"" + std::string(text.substr(0, cut)) + "...\" (" + std::to_string(text.size()) +
         " bytes)";
}

}  // namespace velt
