// SPDX-License-Identifier: BSD-3-Clause
#include "Colors.h"
#include "Errors.h"
#include "Host/Messages/Json.h"
#include "Host/Texts/ColorText.h"
#include "Host/Texts/TextReader.h"

#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <tuple>

namespace vorto::python {
namespace {

using Type = VortoColor::Type;
using Three = std::tuple<float, float, float>;
using State = std::tuple<std::uint32_t, float, float, float, float>;  // of a pickled color

// The names of the components, for __repr__ alone.
const char* nameOf(Type model) {
  constexpr const char* kNames[] = {"HSL", "HSV", "HWB", "RGB", "YIQ", "YUV", "CLU"};
  return kNames[model];
}

// The number that people would write for a float: the shortest that is the same float.
double shortest(float value) {
  char digits[32];
  const auto end = std::to_chars(digits, std::end(digits), value).ptr;
  double number = value;
  std::from_chars(digits, end, number);
  return number;
}

// The same, but what stands for a code of 8 bits is that code to the last bit.
double written(float value) {
  const double code = std::round(value * 255.0) / 255.0;
  return static_cast<float>(code) == value ? code : shortest(value);
}

std::string describe(const VortoColor& color) {
  const auto number = [](float value) {
    return std::isfinite(value) ? host::numberText(shortest(value))
                                : std::string(std::isnan(value) ? "nan"
                                              : value < 0       ? "-inf"
                                                                : "inf");
  };
  return std::string("vorto.Color(vorto.ColorModel.") + nameOf(color.type) + ", " + number(color.c1) + ", " +
         number(color.c2) + ", " + number(color.c3) + ", " + number(color.alpha) + ")";
}

VortoColor converted(VortoColor color, Type model) {
  color.convert(model);
  return color;
}

std::string textOf(const VortoColor& color) {
  if (!std::isfinite(color.getRed()) || !std::isfinite(color.getGreen()) || !std::isfinite(color.getBlue())) {
    throw py::value_error("a text holds finite numbers only");
  }
  return host::colorText({written(color.getRed()), written(color.getGreen()), written(color.getBlue())});
}

// What a conversion leaves unwritten is NaN.
using Conversion = void (*)(float, float, float, float*, float*, float*);
Three convert(Conversion conversion, float first, float second, float third) {
  const float unwritten = std::numeric_limits<float>::quiet_NaN();
  Three result{unwritten, unwritten, unwritten};
  conversion(first, second, third, &std::get<0>(result), &std::get<1>(result), &std::get<2>(result));
  return result;
}

void bindConversions(py::class_<VortoColor>& color) {
  struct Row {
    const char* name;
    Conversion conversion;
    const char* text;
  };
  static constexpr Row kRows[] = {
      {"rgb_to_hsl", &VortoColor::RGBtoHSL, "(hue in degrees, saturation, lightness) of red, green, blue of 0 to 1."},
      {"hsl_to_rgb", &VortoColor::HSLtoRGB, "(red, green, blue); blue always equals the upper bound."},
      {"rgb_to_hsv", &VortoColor::RGBtoHSV, "(hue in degrees, saturation, value) of red, green, blue of 0 to 1."},
      {"hsv_to_rgb", &VortoColor::HSVtoRGB, "(red, green, blue); NaN for a hue of exactly 360."},
      {"rgb_to_hwb", &VortoColor::RGBtoHWB, "(hue in degrees, whiteness, blackness) of red, green, blue of 0 to 1."},
      {"hwb_to_rgb", &VortoColor::HWBtoRGB, "(red, green, blue); NaN for a hue outside 0 to 420."},
      {"rgb_to_yiq", &VortoColor::RGBtoYIQ, "(Y, I, Q) of red, green, blue of 0 to 1."},
      {"yiq_to_rgb", &VortoColor::YIQtoRGB, "(red, green, blue)."},
      {"rgb_to_yuv", &VortoColor::RGBtoYUV, "(Y, U, V) of red, green, blue of 0 to 1."},
      {"yuv_to_rgb", &VortoColor::YUVtoRGB, "(red, green, blue)."},
      {"rgb_to_clu", &VortoColor::RGBtoCLU,
       "(achromatic axis, green minus red, blue minus yellow) of red, green, blue."},
      {"clu_to_rgb", &VortoColor::CLUtoRGB, "(red, green, blue)."},
  };
  for (const Row& row : kRows) {
    color.def_static(
        row.name,
        [conversion = row.conversion](float first, float second, float third) {
          return convert(conversion, first, second, third);
        },
        py::arg("first"), py::arg("second"), py::arg("third"), row.text);
  }
}

void bindArithmetic(py::class_<VortoColor>& color) {
  color.def(py::self += float(),
            "On the components that carry light: RGB, YIQ and YUV all, HSL lightness, HSV value, HWB "
            "whiteness, CLU C.");
  color.def(py::self -= float(), "The inverse of +=.");
  color.def(py::self *= float(), "On the components that carry light.");
  color.def(py::self /= float(), "On the components that carry light; dividing by 0 does nothing.");
  color.def(py::self += py::self, "Add a color after converting it to this one's model. Alpha stays.");
  color.def(py::self -= py::self, "Subtract a color after converting it to this one's model. Alpha stays.");
  const auto plain = [&](const char* name, VortoColor& (VortoColor::*method)(float), const char* text) {
    color.def(
        name, [method](VortoColor& self, float x) { (self.*method)(x); }, py::arg("x"), text);
  };
  plain("add", &VortoColor::add, "Add to all three components, whatever the model.");
  plain("sub", &VortoColor::sub, "Subtract from all three components, whatever the model.");
  plain("mul", &VortoColor::mul, "Multiply all three components, whatever the model.");
  plain("div", &VortoColor::div, "Divide all three components, whatever the model; by 0 does nothing.");
  color.def(
      "mix", [](VortoColor& self, const VortoColor& other, float t) { self.mix(other, t); }, py::arg("other"),
      py::arg("t"), "Each component becomes (1 - t) of its own and t of the other's, of the same model. Alpha stays.");
  color.def(
      "invert", [](VortoColor& self) { self.invert(); },
      "Clamp, then take each component from 1, whatever the model. Alpha is only clamped.");
  color.def(
      "clamp", [](VortoColor& self) { self.clamp(); },
      "Bring alpha and the components into their ranges; hues are wrapped.");
}

}  // namespace

VortoColor colorOfText(const std::string& text) {
  try {
    host::TextReader reader(text);
    const host::TextColor read = host::readColor(reader);
    if (!reader.atEnd()) reader.expected("the end of the color");
    return {static_cast<float>(read.rgb[0]), static_cast<float>(read.rgb[1]), static_cast<float>(read.rgb[2]),
            static_cast<float>(read.alpha.value_or(1))};
  } catch (const host::TextFault& fault) {
    throw py::value_error(host::faultWithPlace(text, fault, true));
  }
}

void bindColors(py::module_& module) {
  py::enum_<Type>(module, "ColorModel", "The seven models of colors, with what their three components are.")
      .value("HSL", VortoColor::HSL, "Hue 0 to 360 degrees, saturation 0 to 1, lightness 0 to 1.")
      .value("HSV", VortoColor::HSV, "Hue 0 to 360 degrees, saturation 0 to 1, value 0 to 1.")
      .value("HWB", VortoColor::HWB, "Hue 0 to 360 degrees, whiteness 0 to 1, blackness 0 to 1.")
      .value("RGB", VortoColor::RGB, "Red, green, blue 0 to 1.")
      .value("YIQ", VortoColor::YIQ, "Y 0 to 1, I -0.596 to 0.596, Q -0.274 to 0.274.")
      .value("YUV", VortoColor::YUV, "Y 0 to 1, U -0.436 to 0.436, V -0.615 to 0.615.")
      .value("CLU", VortoColor::CLU, "C achromatic axis, L green minus red, U blue minus yellow.");

  py::class_<VortoColor> color(
      module, "Color",
      "A color: three components in the units of a model (ColorModel), and alpha, 0 transparent to 1 opaque. Single "
      "precision; nothing clamps but clamp() and invert(). Wherever a color is wanted, a tuple of 3 or 4 numbers (RGB) "
      "and a text as CSS writes it will do.");
  color.def(py::init([](float r, float g, float b, float a) { return VortoColor(r, g, b, a); }), py::arg("red") = 0.0F,
            py::arg("green") = 0.0F, py::arg("blue") = 0.0F, py::arg("alpha") = 1.0F, "A color in RGB; opaque black.");
  color.def(py::init([](Type model, float c1, float c2, float c3, float alpha) {
              return VortoColor(model, c1, c2, c3, alpha);
            }),
            py::arg("model"), py::arg("c1") = 0.0F, py::arg("c2") = 0.0F, py::arg("c3") = 0.0F, py::arg("alpha") = 1.0F,
            "A color in a model.");
  color.def(py::init(&colorOfText), py::arg("text"),
            "The color of a text as CSS has it: \"navy\", \"#f80\", \"rgb(255 136 0 / 50%)\", \"hsl(30 100% 50%)\", "
            "\"color(srgb 1 0.5 0)\". ValueError with the place of the fault.");
  color.def(py::init([](const py::tuple& rgb) {
              if (rgb.size() != 3 && rgb.size() != 4) throw py::type_error("a color is 3 or 4 numbers");
              return VortoColor(py::cast<float>(rgb[0]), py::cast<float>(rgb[1]), py::cast<float>(rgb[2]),
                                rgb.size() == 4 ? py::cast<float>(rgb[3]) : 1.0F);
            }),
            py::arg("rgba"), "A color in RGB of a tuple of 3 or 4 numbers.");
  py::implicitly_convertible<py::str, VortoColor>();
  py::implicitly_convertible<py::tuple, VortoColor>();
  color.def_readwrite("model", &VortoColor::type, "The model; to convert into another one use convert().");
  color.def_readwrite("c1", &VortoColor::c1, "The first component.");
  color.def_readwrite("c2", &VortoColor::c2, "The second component.");
  color.def_readwrite("c3", &VortoColor::c3, "The third component.");
  color.def_readwrite("alpha", &VortoColor::alpha, "0 transparent to 1 opaque.");
  color.def_property_readonly("red", &VortoColor::getRed, "Red in RGB.");
  color.def_property_readonly("green", &VortoColor::getGreen, "Green in RGB.");
  color.def_property_readonly("blue", &VortoColor::getBlue, "Blue in RGB.");
  color.def_property_readonly(
      "rgba", [](const VortoColor& c) { return py::make_tuple(c.getRed(), c.getGreen(), c.getBlue(), c.alpha); },
      "(red, green, blue, alpha).");
  color.def("convert", &VortoColor::convert, py::arg("model"), "Change the model in place, through RGB.");
  color.def("converted", &converted, py::arg("model"), "The color in another model.");
  color.def("text", &textOf,
            "\"#rrggbb\" where that is the same color to the bit, otherwise \"color(srgb ...)\"; without "
            "alpha. ValueError for numbers that are not finite.");
  color.def("is_close", &VortoColor::colorCompare, py::arg("other"), py::arg("tolerance"),
            "Whether any one component is closer than the tolerance, after conversion to this color's model.");
  color.def_static("clamp_hue", &VortoColor::clampHue, py::arg("hue"),
                   "The hue in 0 to 360 degrees; exactly 360 stays, NaN and infinities give NaN.");
  bindConversions(color);
  bindArithmetic(color);
  color.def(py::self == py::self, "Whether all components and alpha are within 0.00001, in this color's model.");
  color.def(py::self != py::self, "Whether they are not.");
  color.attr("__hash__") = py::none();
  color.def("__repr__", &describe, "Model and components.");
  color.def(
      "__copy__", [](const VortoColor& self) { return self; }, "A copy.");
  color.def(
      "__deepcopy__", [](const VortoColor& self, const py::dict&) { return self; }, py::arg("memo"), "A copy.");
  color.def(py::pickle(
      [](const VortoColor& self) {
        return State{static_cast<std::uint32_t>(self.type), self.c1, self.c2, self.c3, self.alpha};
      },
      [](const State& state) {
        const auto [model, c1, c2, c3, alpha] = state;
        if (model > VortoColor::CLU) throw py::value_error("this is not the state of a color");
        return VortoColor(static_cast<Type>(model), c1, c2, c3, alpha);
      }));
  struct Named {
    const char* name;
    VortoColor color;
  };
  const Named kNamed[] = {{"RED", VortoColor::RED},     {"GREEN", VortoColor::GREEN}, {"BLUE", VortoColor::BLUE},
                          {"BLACK", VortoColor::BLACK}, {"WHITE", VortoColor::WHITE}, {"YELLOW", VortoColor::YELLOW},
                          {"CLEAR", VortoColor::CLEAR}};
  for (const Named& named : kNamed) {
    color.def_property_readonly_static(
        named.name, [value = named.color](const py::object&) { return value; },
        "A color of that name; a new one each time.");
  }
}

}  // namespace vorto::python
