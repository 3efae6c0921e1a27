#pragma once

// A headless form with the pinned test font, and an event log that records
// every event a control raises with its arguments.

#include <cstdint>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "velt/host/Form.hpp"
#include "velt/host/Site.hpp"
#include "velt/platform/Font.hpp"
#include "velt/platform/HeadlessWindowSystem.hpp"
#include "velt/platform/Variant.hpp"

namespace velt::test {

inline constexpr const char* kPinnedFamily = "DejaVu Sans";
inline constexpr float kPinnedSize = 8.25f;

inline std::shared_ptr<Font> PinnedFont() {
  return std::make_shared<Font>(kPinnedFamily, kPinnedSize);
}

// Every event a site's control raised, as "Name(i1, i0, f5, f7)": i marks an
// Integer argument, f a Single, anything else shows its type name.
class EventLog {
 public:
  explicit EventLog(Site& site)
      : connection_(site.EventLog.connect(
            [this](const std::string& name, std::span<const Variant> arguments) {
              std::ostringstream line;
              line << name << "(";
              for (size_t i = 0; i < arguments.size(); ++i) {
                const Variant& value = arguments[i];
                line << (i ? ", " : "");
                if (value.Type() == VariantType::Integer)
                  line << "i" << value.ToInteger();
                else if (value.Type() == VariantType::Single)
                  line << "f" << value.ToSingle();
                else
                  line << value.TypeName() << ":" << value.ToString();
              }
              lines_.push_back(line.str() + ")");
            })) {}

  const std::vector<std::string>& Lines() const { return lines_; }
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const std::string& line : lines_)
      names.push_back(line.substr(0, line.find('(')));
    return names;
  }
  void Clear() { lines_.clear(); }

 private:
  std::vector<std::string> lines_;
  Connection connection_;
};

// A form at screen (0, 0) of a 1024x768 headless screen, its ambient font pinned.
struct HeadlessForm {
  HeadlessForm() : system(std::make_shared<HeadlessWindowSystem>()), form(system) {
    form.Font(PinnedFont());
  }

  // Runs everything queued so far.
  void Run() { system->RunUntilIdle(); }
  // Moves the virtual clock with an empty queue: timer ticks are all that runs.
  void Tick(int32_t milliseconds = 1) { system->AdvanceClock(milliseconds); }

  std::shared_ptr<HeadlessWindowSystem> system;
  Form form;
};

}  // namespace velt::test
