// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/Out/Module/Effect.h"
#include "Host/Rendering/EffectRendering.h"
#include "Platform/Foundation/PropertyList.h"

#include "Bindings/Frei0r/Frei0rHeader.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace frei0r {

// An effect at work on frames of one size, with a patch and values of its own. Nothing throws but the constructor.
class Instance {
 public:
  // Throws Failure for a size that no bitmap can have, or an effect that cannot be made. Made and destroyed with the
  // registry locked.
  Instance(const Effect& effect, std::uint32_t width, std::uint32_t height);

  // What does not fit is said once, and the last good value stays. Indexes that do not exist do nothing.
  void set(int index, f0r_param_t value);
  void get(int index, f0r_param_t value) const;

  // Where rendering fails, which is said once, the frame is a filter's input, or transparent.
  void update(double time, const std::uint32_t* const* inputs, std::uint32_t* output);

 private:
  struct Slot {
    Value given;                          // as the host sees it
    std::optional<std::string> refused;   // the text that was given last and did not fit
    std::optional<PropertyList> initial;  // of a text's port
  };

  bool isEmptyText(const Parameter& parameter, const Value& value) const;
  void apply(std::size_t index, const Value& value);
  void render(double time, const std::uint32_t* const* inputs, std::uint32_t* output);
  void connect(const std::vector<host::MutableBitmapRef>& frames);
  void disconnect();
  void setExtraPicture(const host::BitmapRef& bitmap);
  double timeFor(double seconds) const;
  void say(const std::string& message);

  const Effect& effect_;
  const std::uint32_t width_, height_;
  host::EffectRendering rendering_;
  std::vector<Slot> slots_;
  std::set<std::string> said_;
};

}  // namespace frei0r
