// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradient.h"
#include "Errors.h"
#include "Host/Texts/GradientStops.h"
#include "States.h"
#include "TarnCore/TCColor.h"

#include <pybind11/numpy.h>
#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace vorto::python {
namespace {

using GradientClass = py::class_<VRTGradient, VRTObject, std::shared_ptr<VRTGradient>>;
using host::ColorStop;
using host::OpacityStop;

constexpr std::uint32_t kMostEntries = std::uint32_t{1} << 24;  // of a table
constexpr std::size_t kLongTable = 65536;

std::array<double, 3> rgbOf(const py::tuple& rgb) {
  if (rgb.size() != 3) throw py::type_error("a color of a stop is 3 numbers; opacity has stops of its own");
  return {py::cast<double>(rgb[0]), py::cast<double>(rgb[1]), py::cast<double>(rgb[2])};
}

std::string describe(const ColorStop& stop) {
  const py::tuple values = py::make_tuple(stop.position, py::make_tuple(stop.value[0], stop.value[1], stop.value[2]),
                                          stop.interpolation, stop.middle);
  return "vorto.ColorStop" + py::cast<std::string>(py::repr(values));
}

std::string describe(const OpacityStop& stop) {
  return "vorto.OpacityStop" +
         py::cast<std::string>(py::repr(py::make_tuple(stop.position, stop.value[0], stop.interpolation, stop.middle)));
}

template <class Stop>
py::class_<Stop> bindStop(py::module_& module, const char* name, const char* text) {
  py::class_<Stop> stop(module, name, text);
  stop.def_readwrite("position", &Stop::position, "Where it is, usually 0 to 1.");
  stop.def_readwrite("middle", &Stop::middle, "The middle of the segment that begins here, as a part of it.");
  stop.def_property(
      "interpolation", [](const Stop& self) { return self.interpolation; },
      [](Stop& self, std::int32_t value) { self.interpolation = value; },
      "How the segment that begins here goes on: an Interpolation, or any other int, which evaluates to nothing.");
  stop.def(
      "__eq__",
      [](const Stop& self, const Stop& other) {
        return self.position == other.position && self.middle == other.middle &&
               self.interpolation == other.interpolation && self.value == other.value;
      },
      py::arg("other"), py::is_operator(), "Whether all numbers are equal.");
  stop.attr("__hash__") = py::none();
  stop.def(
      "__repr__", [](const Stop& self) { return describe(self); }, "The numbers.");
  return stop;
}

void bindStops(py::module_& module) {
  py::enum_<VRTGradientInterpolation>(module, "Interpolation", "How a gradient goes from a stop to the next one.",
                                      py::arithmetic())
      .value("Constant", VRTGradientConstant, "The color stays.")
      .value("Linear", VRTGradientLinear, "In a straight line.")
      .value("Smooth", VRTGradientSmooth, "Along a Bezier curve, by way of the middle.");

  auto color = bindStop<ColorStop>(module, "ColorStop",
                                   "A color of a gradient, in double precision. A copy: change the "
                                   "list and assign it to Gradient.colors.");
  const auto interpolation = py::arg("interpolation") = static_cast<std::int32_t>(VRTGradientLinear);
  color.def(py::init([](double position, const py::tuple& rgb, std::int32_t kind, double middle) {
              return ColorStop{position, middle, kind, rgbOf(rgb)};
            }),
            py::arg("position"), py::arg("rgb"), interpolation, py::arg("middle") = 0.5,
            "A stop of red, green and blue of 0 to 1.");
  color.def(py::init([](double position, const VortoColor& c, std::int32_t kind, double middle) {
              return ColorStop{position, middle, kind, {c.getRed(), c.getGreen(), c.getBlue()}};
            }),
            py::arg("position"), py::arg("color"), interpolation, py::arg("middle") = 0.5,
            "A stop of a Color, or of a text as CSS has it.");
  color.def_property(
      "rgb", [](const ColorStop& self) { return py::make_tuple(self.value[0], self.value[1], self.value[2]); },
      [](ColorStop& self, const py::tuple& rgb) { self.value = rgbOf(rgb); }, "(red, green, blue) of 0 to 1.");
  color.def(
      py::pickle([](const ColorStop& s) { return py::make_tuple(s.position, s.middle, s.interpolation, s.value); },
                 [](const py::tuple& state) {
                   if (state.size() != 4) throw py::value_error("this is not the state of a stop");
                   return ColorStop{py::cast<double>(state[0]), py::cast<double>(state[1]),
                                    py::cast<std::int32_t>(state[2]), py::cast<std::array<double, 3>>(state[3])};
                 }));

  auto opacity = bindStop<OpacityStop>(module, "OpacityStop",
                                       "An opacity of a gradient. A copy: change the list and "
                                       "assign it to Gradient.opacities.");
  opacity.def(py::init([](double position, double value, std::int32_t kind, double middle) {
                return OpacityStop{position, middle, kind, {value}};
              }),
              py::arg("position"), py::arg("opacity"), interpolation, py::arg("middle") = 0.5,
              "A stop of an opacity of 0 to 1.");
  opacity.def_property(
      "opacity", [](const OpacityStop& self) { return self.value[0]; },
      [](OpacityStop& self, double value) { self.value[0] = value; }, "0 transparent to 1 opaque.");
  opacity.def(
      py::pickle([](const OpacityStop& s) { return py::make_tuple(s.position, s.middle, s.interpolation, s.value[0]); },
                 [](const py::tuple& state) {
                   if (state.size() != 4) throw py::value_error("this is not the state of a stop");
                   return OpacityStop{py::cast<double>(state[0]),
                                      py::cast<double>(state[1]),
                                      py::cast<std::int32_t>(state[2]),
                                      {py::cast<double>(state[3])}};
                 }));
}

template <class Stop>
bool isFinite(const Stop& stop) {
  bool result = std::isfinite(stop.position) && std::isfinite(stop.middle);
  for (const double value : stop.value) result = result && std::isfinite(value);
  return result;
}

// The gradient takes these stops as it takes a state.
void setStops(VRTGradient& gradient, const host::GradientStops& stops) {
  if (stops.colors.size() > host::kMaximumStops || stops.opacities.size() > host::kMaximumStops) {
    throw py::value_error("more stops than a gradient may have (65536)");
  }
  const bool isKept = std::ranges::all_of(stops.colors, isFinite<ColorStop>) &&
                      std::ranges::all_of(stops.opacities, isFinite<OpacityStop>);
  if (!isKept) throw py::value_error("the numbers of stops are finite");
  std::string reason;
  if (!gradient.initWithStateValue(host::stateOfStops(stops), &reason)) throw Error(reason);
}

host::GradientStops stopsOf(const VRTGradient& gradient) {
  return host::stopsOfState(stateOf(gradient));
}

void sort(VRTGradient& gradient) {
  gradient.kxChannelGradient()->rgbFolder.sortAndRename();
  gradient.kxChannelGradient()->alphaFolder.sortAndRename();
}

std::size_t insert(VRTChannelGradientFolder& folder, double position) {
  if (!std::isfinite(position)) throw py::value_error("a position is a finite number");
  if (folder.getNumberOfDescendants() >= host::kMaximumStops) throw py::value_error("the gradient is full of stops");
  folder.insertSample(0, position);
  return folder.getNumberOfDescendants() - 1;
}

void checkCount(std::int64_t count) {
  if (count < 0 || count > kMostEntries) throw py::value_error("a table has 0 to 16777216 entries");
}

// Where it takes long, the table is made of a copy, which no other thread knows.
template <class Number>
py::array tableOf(const VRTGradient& gradient, std::uint32_t count) {
  py::array_t<Number> table({static_cast<py::ssize_t>(count), py::ssize_t{4}});
  Number* out = table.mutable_data();
  if (count < kLongTable) {
    gradient.kxChannelGradient()->getGradient(0, out, count);
    return table;
  }
  const auto copy = std::dynamic_pointer_cast<VRTGradient>(gradient.copyWithZone());
  const py::gil_scoped_release unlocked;
  copy->kxChannelGradient()->getGradient(0, out, count);
  return table;
}

py::array table(const VRTGradient& gradient, std::int64_t count, const py::object& type) {
  checkCount(count);
  const auto entries = static_cast<std::uint32_t>(count);
  const py::dtype wanted = py::dtype::from_args(type);
  if (wanted.equal(py::dtype::of<float>())) return tableOf<float>(gradient, entries);
  if (wanted.equal(py::dtype::of<std::uint8_t>())) return tableOf<std::uint8_t>(gradient, entries);
  if (wanted.equal(py::dtype::of<std::uint16_t>())) return tableOf<std::uint16_t>(gradient, entries);
  throw py::type_error("a table is of the type uint8, uint16 or float32");
}

using Positions = py::array_t<double, py::array::c_style | py::array::forcecast>;
py::array evaluate(const VRTGradient& gradient, const Positions& positions) {
  std::vector<py::ssize_t> shape(positions.shape(), positions.shape() + positions.ndim());
  shape.push_back(4);
  py::array_t<double> result(shape);
  const double* from = positions.data();
  double* to = result.mutable_data();
  const auto count = static_cast<std::size_t>(positions.size());
  const VRTChannelGradient& channel = *gradient.kxChannelGradient();
  VRTGradientLookup colors;
  VRTGradientLookup opacities;
  channel.rgbFolder.getLookup(0, colors);
  channel.alphaFolder.getLookup(0, opacities);
  std::optional<py::gil_scoped_release> unlocked;  // the lookups are copies
  if (count >= kLongTable) unlocked.emplace();
  for (std::size_t i = 0; i < count; ++i) {
    double* rgba = to + 4 * i;
    std::fill_n(rgba, 4, 0.0);
    channel.rgbFolder.getRGBAFromLookup(from[i], rgba, colors);
    channel.alphaFolder.getRGBAFromLookup(from[i], rgba, opacities);
  }
  return result;
}

VortoColor colorAt(const VRTGradient& gradient, double position) {
  VortoColor color;
  gradient.kxChannelGradient()->getColor(0, position, &color);
  return color;
}

std::shared_ptr<VRTGradient> gradientOfStops(const std::vector<ColorStop>& colors,
                                             const std::optional<std::vector<OpacityStop>>& opacities) {
  auto gradient = VRTGradient::gradient();
  setStops(*gradient, {colors, opacities.value_or(std::vector<OpacityStop>{host::kOpaque})});
  return gradient;
}

std::string describe(const VRTGradient& gradient) {
  try {
    const PropertyList::Bytes text =
        writtenParameter(std::static_pointer_cast<VRTObject>(gradient.copyWithZone()), "text", "xml");
    std::string line(text.begin(), text.end());
    while (line.ends_with('\n')) line.pop_back();
    for (char& one : line) one = one == '\n' ? ' ' : one;
    return "vorto.Gradient(\"" + line + "\")";
  } catch (const Error&) {
    return "<vorto.Gradient>";
  }
}

void bindEvaluation(GradientClass& type) {
  type.def(
      "table", &table, py::arg("count"), py::arg("dtype") = "float32",
      "`count` entries from 0 to 1 as an array of (count, 4): alpha, red, green, blue. uint8 and uint16 both hold 0 to "
      "255, cut off toward zero; float32 is unscaled. ValueError for more than 2**24 entries. Needs numpy.");
  type.def(
      "evaluate", &evaluate, py::arg("positions"),
      "Red, green, blue and alpha at positions of any shape, in double precision: an array of (..., 4). Before the "
      "first stop and behind the last one these hold. Needs numpy.");
  type.def("color_at", &colorAt, py::arg("position"), "The color at a position.");
}

void bindEditing(GradientClass& type) {
  type.def_property(
      "colors", [](const VRTGradient& self) { return stopsOf(self).colors; },
      [](VRTGradient& self, std::vector<ColorStop> colors) {
        setStops(self, {std::move(colors), stopsOf(self).opacities});
      },
      "The colors as a list of ColorStop, which is a copy. ValueError for numbers that are not finite.");
  type.def_property(
      "opacities", [](const VRTGradient& self) { return stopsOf(self).opacities; },
      [](VRTGradient& self, std::vector<OpacityStop> opacities) {
        setStops(self, {stopsOf(self).colors, std::move(opacities)});
      },
      "The opacities as a list of OpacityStop, which is a copy. ValueError for numbers that are not finite.");
  type.def(
      "insert_color",
      [](VRTGradient& self, double position) { return insert(self.kxChannelGradient()->rgbFolder, position); },
      py::arg("position"), "Add a color that is there already: the gradient stays as it looks. Its index in `colors`.");
  type.def(
      "insert_opacity",
      [](VRTGradient& self, double position) { return insert(self.kxChannelGradient()->alphaFolder, position); },
      py::arg("position"), "Add an opacity that is there already. Its index in `opacities`.");
  type.def("sort", &sort, "Put the stops in ascending order; of those at one position the last stays.");
  type.def(
      "flop",
      [](VRTGradient& self) {
        self.kxChannelGradient()->rgbFolder.flop(0);
        self.kxChannelGradient()->alphaFolder.flop(0);
      },
      "Mirror the gradient: every segment keeps its look.");
  type.def(
      "spread",
      [](VRTGradient& self) {
        self.kxChannelGradient()->rgbFolder.spread(0);
        self.kxChannelGradient()->alphaFolder.spread(0);
      },
      "Space the stops evenly from 0 to 1 and centre the middles.");
  type.def(
      "reset",
      [](VRTGradient& self, std::int32_t kind) {
        self.kxChannelGradient()->defaultKind = kind;
        self.kxChannelGradient()->reset();
      },
      py::arg("kind") = 0,
      "Add the two colors of a default at 0 and 1 and opacity 1 at 0, and sort: 1 black to white, 2 white to black, "
      "any "
      "other red to blue. Stops elsewhere stay.");
}

}  // namespace

void bindGradient(py::module_& module) {
  bindStops(module);
  GradientClass type(
      module, "Gradient",
      "Colors and opacities along a line, usually from 0 to 1. Wherever an effect wants one, a text will do.");
  type.def(py::init(&VRTGradient::gradient), "White at 0 to black at 1, smooth, opaque.");
  type.def(
      py::init([](const std::string& text) {
        return std::static_pointer_cast<VRTGradient>(parameterOfText(text, host::StateKind::Gradient));
      }),
      py::arg("text"),
      "The gradient of a text: \"navy, orange smooth 60%, white\", CSS, SVG, .ggr or .cpt. ValueError with the place "
      "of the fault; what gets lost on the way is a warning.");
  type.def(
      py::init([](const py::dict& state) {
        return std::static_pointer_cast<VRTGradient>(parameterOfState(listOfObject(state), host::StateKind::Gradient));
      }),
      py::arg("state"), "The gradient of a state, as state() gives it.");
  type.def(py::init(&gradientOfStops), py::arg("colors"), py::arg("opacities") = py::none(),
           "A gradient of ColorStops, and of OpacityStops; opaque without.");
  bindEditing(type);
  bindEvaluation(type);
  bindState(type, host::StateKind::Gradient);
  bindText(type,
           "The gradient in one of the forms text, css, svg, gimp and json. Error with the reason when the form "
           "cannot hold it; stops that had to be added are a warning.");
  type.def(
      "__repr__", [](const VRTGradient& self) { return describe(self); }, "Its text.");
}

}  // namespace vorto::python
