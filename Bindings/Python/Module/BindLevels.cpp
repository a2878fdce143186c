// SPDX-License-Identifier: BSD-3-Clause
#include "Errors.h"
#include "States.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace vorto::python {
namespace {

using LevelsClass = py::class_<VRTHistogram, VRTObject, std::shared_ptr<VRTHistogram>>;

constexpr int kChannels = 5;
constexpr const char* kChannelNames[kChannels] = {"rgb", "red", "green", "blue", "alpha"};

// One channel of levels, which it keeps.
struct LevelsChannel {
  std::shared_ptr<VRTHistogram> levels;
  int channel;
};

struct Value {
  const char* name;
  double (VRTHistogram::*get)(int) const;
  void (VRTHistogram::*set)(double, int);
  const char* text;
};
constexpr Value kValues[] = {
    {"black_in", &VRTHistogram::blackInForChannel, &VRTHistogram::setBlackIn, "What becomes black_out, 0 to 1."},
    {"black_out", &VRTHistogram::blackOutForChannel, &VRTHistogram::setBlackOut, "What black_in becomes, 0 to 1."},
    {"white_in", &VRTHistogram::whiteInForChannel, &VRTHistogram::setWhiteIn, "What becomes white_out, 0 to 1."},
    {"white_out", &VRTHistogram::whiteOutForChannel, &VRTHistogram::setWhiteOut, "What white_in becomes, 0 to 1."},
    {"gamma", &VRTHistogram::gammaForChannel, &VRTHistogram::setGamma,
     "The exponent's inverse, above 0; 1 changes nothing."},
};

double checked(double value) {
  if (!std::isfinite(value)) throw py::value_error("the values of levels are finite numbers");
  return value;
}

std::string describe(const LevelsChannel& self) {
  std::string text = std::string("<vorto.LevelsChannel ") + kChannelNames[self.channel];
  for (const Value& value : kValues) {
    text += std::string(" ") + value.name + "=" +
            py::cast<std::string>(py::repr(py::float_((self.levels.get()->*value.get)(self.channel))));
  }
  return text + ">";
}

void bindChannel(py::module_& module) {
  py::class_<LevelsChannel> type(module, "LevelsChannel",
                                 "The five values of one channel of levels, 0 to 1 but for gamma.");
  for (const Value& value : kValues) {
    type.def_property(
        value.name, [get = value.get](const LevelsChannel& self) { return (self.levels.get()->*get)(self.channel); },
        [set = value.set](const LevelsChannel& self, double number) {
          (self.levels.get()->*set)(checked(number), self.channel);
        },
        value.text);
  }
  type.def("__repr__", &describe, "Channel and values.");
}

int channelNamed(const std::string& name) {
  const auto* found = std::ranges::find(kChannelNames, name, [](const char* each) { return std::string(each); });
  if (found == std::end(kChannelNames))
    throw py::key_error("the channels of levels are rgb, red, green, blue and alpha");
  return static_cast<int>(found - kChannelNames);
}

py::array_t<double> arrayOf(const VRTHistogram& levels) {
  py::array_t<double> result({kChannels, static_cast<int>(std::size(kValues))});
  double* to = result.mutable_data();
  for (int channel = 0; channel < kChannels; ++channel) {
    for (const Value& value : kValues) *to++ = (levels.*value.get)(channel);
  }
  return result;
}

std::string describe(const std::shared_ptr<VRTHistogram>& levels) {
  try {
    const PropertyList::Bytes text = writtenParameter(levels, "text", "xml");
    std::string line(text.begin(), text.end());
    while (line.ends_with('\n')) line.pop_back();
    return line.empty() ? "vorto.Levels()" : "vorto.Levels(\"" + line + "\")";
  } catch (const Error&) {
    return "<vorto.Levels>";
  }
}

}  // namespace

void bindLevels(py::module_& module) {
  bindChannel(module);
  LevelsClass type(
      module, "Levels",
      "A levels adjustment: five values for each of the channels rgb (all colors together), red, green, blue "
      "and alpha. Wherever an effect wants one, a text will do.");
  type.def(py::init(&VRTHistogram::histogram), "Levels that change nothing.");
  type.def(py::init([](const std::string& text) {
             return std::static_pointer_cast<VRTHistogram>(parameterOfText(text, host::StateKind::Levels));
           }),
           py::arg("text"),
           "The levels of a text: \"gamma=1.2, red.blackIn=10%\". ValueError with the place of the fault.");
  type.def(
      py::init([](const py::dict& state) {
        return std::static_pointer_cast<VRTHistogram>(parameterOfState(listOfObject(state), host::StateKind::Levels));
      }),
      py::arg("state"), "The levels of a state, as state() gives it.");
  for (int channel = 0; channel < kChannels; ++channel) {
    type.def_property_readonly(
        kChannelNames[channel],
        [channel](const std::shared_ptr<VRTHistogram>& self) {
          return LevelsChannel{self, channel};
        },
        "The values of this channel, to be read and set.");
  }
  type.def(
      "__getitem__",
      [](const std::shared_ptr<VRTHistogram>& self, const std::string& name) {
        return LevelsChannel{self, channelNamed(name)};
      },
      py::arg("channel"), "A channel by its name. KeyError for others.");
  type.def_property(
      "selected_channel", &VRTHistogram::selectedChannel,
      [](VRTHistogram& self, int channel) { self.setSelectedChannel(channel); },
      "The channel that an editor shows: 0 rgb, 1 red, 2 green, 3 blue, 4 alpha.");
  type.def(
      "values", &arrayOf,
      "All values as an array of (5, 5) float64: channels by black_in, black_out, white_in, white_out, gamma. A copy. "
      "Needs numpy.");
  bindState(type, host::StateKind::Levels);
  bindText(type,
           "The levels in one of the forms text and json. Error with the reason when a value is beyond its range.");
  type.def(
      "__repr__", [](const std::shared_ptr<VRTHistogram>& self) { return describe(self); }, "Its text.");
}

}  // namespace vorto::python
