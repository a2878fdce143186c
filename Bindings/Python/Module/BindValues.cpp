// SPDX-License-Identifier: BSD-3-Clause
// Pixel formats and depths, the fingerprint, property lists.
#include "Enumerations.h"
#include "Errors.h"
#include "Platform/Foundation/NSFiles.h"
#include "PlistConversion.h"
#include "TarnCore/TCHash128.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/TCPixelLayout.h"
#include "TarnCore/TCString.h"

#include <pybind11/operators.h>
#include <pybind11/stl.h>

#include <cstdlib>
#include <memory>
#include <tuple>

namespace vorto::python {
namespace {

void bindPixelFormats(py::module_& module) {
  py::enum_<PixelFormat> format(module, "PixelFormat",
                                "The layouts of pixels, by their codes 0 to 9. No bitmap is made of ARGB8NoAlpha.");
  format.value("RGBA8", PixelFormat::RGBA8, "Red, green, blue, alpha of 8 bits.")
      .value("ARGB8", PixelFormat::ARGB8, "Alpha, red, green, blue of 8 bits.")
      .value("YUV8", PixelFormat::YUV8, "4:2:2 of 8 bits: U or V, and Y; two pixels are the bytes U, Y, V, Y.")
      .value("ARGB8NoAlpha", PixelFormat::ARGB8NoAlpha, "ARGB8 whose alpha is ignored.")
      .value("RGBA16", PixelFormat::RGBA16, "Red, green, blue, alpha of 16 bits.")
      .value("RGB16", PixelFormat::RGB16, "Red, green, blue of 16 bits.")
      .value("LuminanceAlpha16", PixelFormat::LuminanceAlpha16, "Luminance and alpha of 16 bits.")
      .value("Luminance16", PixelFormat::Luminance16, "Luminance of 16 bits.")
      .value("RGBAHalfFloat", PixelFormat::RGBAHalfFloat, "Red, green, blue, alpha as half floats.")
      .value("RGBAFloat", PixelFormat::RGBAFloat, "Red, green, blue, alpha as floats.");
  const auto number = [&](const char* name, std::uint32_t (*get)(std::uint32_t), const char* text) {
    format.def_property_readonly(
        name, [get](PixelFormat self) { return get(codeOf(self)); }, text);
  };
  number("bits_per_pixel", &VortoPixelFormat::getBitsPerPixel, "Bits of a pixel in memory.");
  number("bits_per_channel", &VortoPixelFormat::getBitsPerChannel, "Bits of a channel.");
  number("gl_internal_format", &VortoPixelFormat::getGLInternalFormat, "The internal format of OpenGL.");
  number("gl_data_format", &VortoPixelFormat::getGLDataFormat, "The data format of OpenGL.");
  number("gl_data_type", &VortoPixelFormat::getGLDataType, "The data type of OpenGL.");
  format.def_property_readonly(
      "has_alpha", [](PixelFormat self) { return VortoPixelFormat::hasAlpha(codeOf(self)); }, "Whether alpha counts.");
  format.def_property_readonly(
      "channels", [](PixelFormat self) { return TCPixelLayoutOf(codeOf(self)).channels; }, "Numbers in a pixel.");
  format.def_property_readonly(
      "description", [](PixelFormat self) { return TCPixelLayoutOf(codeOf(self)).name; }, "What it is, in words.");
  format.def_property_readonly(
      "is_exchanged", [](PixelFormat self) { return TCPixelLayoutOf(codeOf(self)).isExchanged; },
      "Whether effects hand such pixels to one another.");
  format.def_static(
      "from_gl",
      [](std::uint32_t glFormat, std::uint32_t glType) {
        return static_cast<PixelFormat>(VortoPixelFormat::getPixelFormat(glFormat, glType));
      },
      py::arg("gl_format"), py::arg("gl_type"),
      "The layout of a format and a type of OpenGL; an unknown type gives ARGB8.");

  py::enum_<VortoBitDepth::Type> depth(module, "BitDepth", "The four depths that a channel can have.");
  depth.value("Integer8", VortoBitDepth::Integer8, "8-bit integers.")
      .value("Integer16", VortoBitDepth::Integer16, "16-bit integers.")
      .value("Half", VortoBitDepth::Half, "Half floats.")
      .value("Float", VortoBitDepth::Float, "Floats.");
  depth.def_property_readonly("bits_per_pixel", &VortoBitDepth::getBitsPerPixel, "Bits of four channels.");
  depth.def_property_readonly("bits_per_channel", &VortoBitDepth::getBitsPerChannel, "Bits of one channel.");
  depth.def_property_readonly("gl_internal_format", &VortoBitDepth::getPixelFormat, "The internal format of OpenGL.");
  depth.def_static("from_bits_per_pixel", &VortoBitDepth::getFromBitsPerPixel, py::arg("bits"), py::arg("integer"),
                   "48 bits are 16-bit integers, 64 these or halves, 128 floats; anything else is 8-bit.");
  depth.def_static("from_bits_per_channel", &VortoBitDepth::getFromBitsPerChannel, py::arg("bits"), py::arg("integer"),
                   "The same of one channel's bits, of which there are four.");
}

// The text form of a framework string, which is ASCII here.
std::string textOf(const VortoString& string) {
  const std::unique_ptr<char, void (*)(void*)> text(string.createUTF8Str(), &std::free);
  return text ? text.get() : "";
}

void addBytes(VortoHash128& hash, const py::buffer& data) {
  Py_buffer view{};
  if (PyObject_GetBuffer(data.ptr(), &view, PyBUF_CONTIG_RO) != 0) throw py::error_already_set();
  const std::unique_ptr<Py_buffer, void (*)(Py_buffer*)> held(&view, PyBuffer_Release);
  if (view.len > 0xFFFFFFFFLL) throw py::value_error("a fingerprint takes less than 4 GiB at a time");
  hash.addData(static_cast<const unsigned char*>(view.buf), static_cast<std::uint32_t>(view.len));
}

void bindHash(py::module_& module) {
  py::class_<VortoHash128> hash(
      module, "Hash128",
      "A 128-bit fingerprint: whether content has changed. Built on the block transform of MD5 but not MD5, and not "
      "for "
      "security. Every add() pads its own end, so that how content is cut into pieces counts.");
  hash.def(py::init([](const std::optional<py::buffer>& data) {
             VortoHash128 made;
             if (data) addBytes(made, *data);
             return made;
           }),
           py::arg("data") = py::none(), "The fingerprint of the bytes of any contiguous buffer; empty without any.");
  hash.def_static(
      "from_text",
      [](const std::string& text) {
        const bool isText = text.size() == 32 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
        if (!isText) throw py::value_error("a fingerprint is 32 hexadecimal digits");
        return VortoHash128(VortoString(text.c_str()));
      },
      py::arg("text"), "The fingerprint that str() gave. ValueError for anything but 32 hexadecimal digits.");
  hash.def("add", &addBytes, py::arg("data"), "Fold the bytes of a contiguous buffer in; none change nothing.");
  hash.def(py::self += py::self, "Fold another fingerprint in.");
  hash.def(py::self == py::self, "Whether all words are the same.");
  hash.attr("__hash__") = py::none();
  hash.def(
      "__str__", [](const VortoHash128& self) { return textOf(self.getString()); }, "32 lowercase digits.");
  hash.def(
      "__repr__", [](const VortoHash128& self) { return "<vorto.Hash128 " + textOf(self.getString()) + ">"; },
      "The digits.");
  hash.def(
      "__bool__", [](const VortoHash128& self) { return !(self == VortoHash128()); }, "Whether anything was added.");
  hash.def(
      "__copy__", [](const VortoHash128& self) { return self; }, "A copy.");
  hash.def(
      "__deepcopy__", [](const VortoHash128& self, const py::dict&) { return self; }, py::arg("memo"), "A copy.");
  using Words = std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t>;
  const auto words = [](const VortoHash128& self) {
    return Words{self.words[0], self.words[1], self.words[2], self.words[3]};
  };
  hash.def_property_readonly("words", words, "The four words of the state, of 32 bits.");
  hash.def(py::pickle(words, [](const Words& state) {
    VortoHash128 made;
    std::tie(made.words[0], made.words[1], made.words[2], made.words[3]) = state;
    return made;
  }));
}

py::object plistOfBytes(const py::buffer& data) {
  std::string reason;
  const auto list = PropertyListFromBytes(bytesOfObject(data), &reason);
  if (!list) throw Error(reason);
  return objectOfList(*list);
}

PropertyListFormat formatNamed(const std::string& name) {
  if (name == "xml") return PropertyListFormat::Xml;
  if (name == "binary") return PropertyListFormat::Binary;
  throw py::value_error("the format is xml or binary, not " + name);
}

PropertyList::Bytes writtenPlist(const py::object& value, const std::string& format) {
  std::string reason;
  auto bytes = PropertyListToBytes(listOfObject(value), formatNamed(format), &reason);
  if (!bytes) throw Error(reason);
  return std::move(*bytes);
}

void bindPlists(py::module_& module) {
  module.def(
      "plist_from_bytes", &plistOfBytes, py::arg("data"),
      "The property list, XML or binary, as bool, int, float, str, bytes, datetime (UTC), plistlib.UID, list and "
      "dict. Error with the reason when the bytes are none, or beyond the limits (512 deep, 2**21 values, 256 MiB).");
  module.def(
      "plist_to_bytes",
      [](const py::object& value, const std::string& format) { return bytesOf(writtenPlist(value, format)); },
      py::arg("value"), py::arg("format") = "xml",
      "The bytes of a property list in the format xml or binary. TypeError for what no list holds, Error for what the "
      "format cannot hold.");
  module.def(
      "read_plist",
      [](const std::string& path) {
        std::string reason;
        const auto list = PropertyListFromFile(path, &reason);
        if (!list) throw Error(path + ": " + reason);
        return objectOfList(*list);
      },
      py::arg("path"), "plist_from_bytes() of a file. Error with path and reason.");
  module.def(
      "write_plist",
      [](const py::object& value, const std::string& path, const std::string& format) {
        std::string reason;
        if (!NSWriteFile(path, writtenPlist(value, format), &reason)) throw Error(path + ": " + reason);
      },
      py::arg("value"), py::arg("path"), py::arg("format") = "xml",
      "Write plist_to_bytes() into a file. It replaces the file as a whole or leaves it as it was. Error with path and "
      "reason.");
}

}  // namespace

void bindValues(py::module_& module) {
  bindPixelFormats(module);
  bindHash(module);
  bindPlists(module);
}

}  // namespace vorto::python
