// SPDX-License-Identifier: BSD-3-Clause
#include "Errors.h"
#include "Module.h"
#include "Pictures.h"
#include "Remarks.h"

#include "Host/Color/SpaceNames.h"
#include "Host/Commands/OptionValues.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"

#include <utility>

namespace vorto::python {
namespace {

const char* depthName(host::Depth depth) {
  switch (depth) {
    case host::Depth::Bits8:
      return "8";
    case host::Depth::Bits16:
      return "16";
    case host::Depth::Half:
      return "half";
    case host::Depth::Float:
      break;
  }
  return "float";
}

const char* channelsName(host::Channels channels) {
  switch (channels) {
    case host::Channels::Gray:
      return "gray";
    case host::Channels::GrayAlpha:
      return "gray+alpha";
    case host::Channels::RGB:
      return "rgb";
    case host::Channels::RGBA:
      break;
  }
  return "rgba";
}

py::bytes bytesObject(const host::Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

py::dict metadataObject(const host::FileMetadata& metadata) {
  py::dict result;
  if (!metadata.color.iccProfile.empty()) result["icc_profile"] = bytesObject(metadata.color.iccProfile);
  if (!metadata.exif.empty()) result["exif"] = bytesObject(metadata.exif);
  if (metadata.resolution) {
    const bool isInch = metadata.resolution->unit == host::Resolution::Unit::Inch;
    result["resolution"] = py::make_tuple(metadata.resolution->x, metadata.resolution->y, isInch ? "inch" : "cm");
  }
  if (metadata.pixelAspect) result["pixel_aspect"] = *metadata.pixelAspect;
  if (metadata.frameRate) {
    result["frame_rate"] = py::make_tuple(metadata.frameRate->numerator, metadata.frameRate->denominator);
  }
  if (metadata.timeCode)
    result["time_code"] = py::make_tuple(metadata.timeCode->timeAndFlags, metadata.timeCode->userData);
  py::dict attributes;
  for (const host::HeaderAttribute& each : metadata.attributes) {
    attributes[py::str(each.name)] = py::make_tuple(each.type, bytesObject(each.value));
  }
  if (!attributes.empty()) result["attributes"] = attributes;
  return result;
}

std::optional<host::ColorSpace> spaceOption(const char* keyword, const py::object& name) {
  if (name.is_none()) return std::nullopt;
  return host::spaceOfOption(keyword, name.cast<std::string>());
}

Picture read(const py::object& path, const py::object& space, const py::object& working) {
  const std::string file = pathText(path);
  const auto told = spaceOption("space=", space);
  const auto wanted = spaceOption("working_space=", working);
  host::HeldPicture held = withoutLock([&] { return host::readHeldPicture(file, told, wanted); });
  const auto bitmap = ownBitmap(std::exchange(held.bitmap, nullptr));
  return {bitmap, std::move(held)};
}

struct WriteOptions {
  py::object space, depth, channels, alpha, format, quality, compression;
};

void write(const py::object& path, const py::object& image, const WriteOptions& options) {
  const std::string format = optionText(options.format);
  host::HeldOutput output;
  output.path = pathText(path);
  output.format = format.empty() ? host::fileFormatOf(output.path) : host::fileFormatNamed(format);
  output.alpha = host::parsedOutputAlpha(optionText(options.alpha));
  output.channels = host::parsedChannels(optionText(options.channels));
  output.depth = host::parsedDepth(optionText(options.depth));
  output.space = spaceOption("space=", options.space);
  const int quality = options.quality.is_none() ? -1 : options.quality.cast<int>();
  if (!options.quality.is_none() && (quality < 1 || quality > 100)) throw py::value_error("quality: give 1 to 100");
  const host::WriteSettings settings = host::parsedSettings({"", optionText(options.compression), quality});
  host::checkOutput(output.path);
  const GivenPicture picture = givenPicture(image);
  withoutLock([&] { host::writeHeldPicture(picture.held, output, settings); });
}

py::bytes encode(const py::object& image, const std::string& format) {
  host::HeldOutput output;
  output.path = "the bytes";
  output.format = host::fileFormatNamed(format);
  const GivenPicture picture = givenPicture(image);
  return bytesObject(withoutLock([&] {
    host::Bytes bytes;
    host::HeldPictureOutput made(output);
    host::encodePicture(output.format, made.picture(picture.held), {}, [&](std::span<const std::uint8_t> piece) {
      bytes.insert(bytes.end(), piece.begin(), piece.end());
    });
    return bytes;
  }));
}

Picture pictureOf(const py::object& pixels, const py::object& like) {
  GivenPicture given = givenPicture(pixels);
  if (like.is_none()) return {given.bitmap, given.held.info ? given.held : host::heldBitmap(given.held.bitmap)};
  host::HeldPicture held = like.cast<const Picture&>().held;
  const bool isOtherDepth = given.held.bitmap->formatCode != heldOf(like.cast<const Picture&>()).bitmap->formatCode;
  if (isOtherDepth) held.depth = given.held.depth;
  return {given.bitmap, std::move(held)};
}

py::object infoOf(const Picture& picture) {
  return picture.held.info ? py::object(metadataObject(picture.held.info->metadata)) : py::dict();
}

py::dict describe(const py::object& path) {
  const std::string file = pathText(path);
  const host::PictureInfo info = withoutLock([&] { return host::readPictureInfo(file); });
  host::HeldPicture held;
  held.info = std::make_shared<const host::PictureInfo>(info);
  py::dict result;
  result["width"] = info.width;
  result["height"] = info.height;
  result["depth"] = depthName(info.depth);
  result["channels"] = channelsName(info.channels);
  result["space"] = host::spaceText(host::spaceOf(held));
  result["metadata"] = metadataObject(info.metadata);
  return result;
}

std::string summary(const Picture& picture) {
  const VortoBitmap& pixels = picture.bitmap->pixels();
  return "<vorto.Picture " + std::to_string(pixels.width) + " x " + std::to_string(pixels.height) + ", " +
         picture.bitmap->layout().name + ", " + host::spaceText(host::spaceOf(picture.held)) + ">";
}

}  // namespace

void bindFiles(py::module_& module) {
  py::class_<Picture>(
      module, "Picture",
      "A bitmap, and what its file said of it: read() makes it, effects take and return it, write() keeps\n"
      "what it says where the format holds it. The pixels (`bitmap`, or np.asarray(picture)) may be changed\n"
      "in place; the rest stays as it is.")
      .def(py::init(&pictureOf), py::arg("pixels"), py::kw_only(), py::arg("like") = py::none(),
           "Pixels (a Bitmap or an array, premultiplied) with all that another picture says of itself.")
      .def_readonly("bitmap", &Picture::bitmap, "The pixels: premultiplied, in the space that `space` names.")
      .def_property_readonly(
          "width", [](const Picture& self) { return self.bitmap->pixels().width; }, "In pixels.")
      .def_property_readonly(
          "height", [](const Picture& self) { return self.bitmap->pixels().height; }, "In pixels.")
      .def_property_readonly(
          "depth", [](const Picture& self) { return depthName(self.held.depth); },
          "In which it is written unless told: \"8\", \"16\", \"half\", \"float\".")
      .def_property_readonly(
          "channels",
          [](const Picture& self) {
            return channelsName(self.held.info ? self.held.info->channels : host::Channels::RGBA);
          },
          "Of its file: \"gray\", \"gray+alpha\", \"rgb\", \"rgba\".")
      .def_property_readonly(
          "space", [](const Picture& self) { return host::spaceText(host::spaceOf(self.held)); },
          "The color space of the pixels, as messages name it.")
      .def_property_readonly(
          "metadata", &infoOf,
          "What else the file said: icc_profile and exif (bytes), resolution (x, y, \"inch\" or \"cm\"),\n"
          "pixel_aspect, frame_rate (numerator, denominator), time_code (packed time, user bits), and\n"
          "attributes of EXR ({name: (type, bytes)}); each where there is one.")
      .def("__array__",
           [](const Picture& self, const py::args& arguments, const py::kwargs& keywords) {
             return py::module_::import("numpy").attr("asarray")(py::cast(self.bitmap), *arguments, **keywords);
           })
      .def("_repr_png_", [](const py::object& self) { return encode(self, "png"); })
      .def("__repr__", &summary);

  module.def(
      "read", &read, py::arg("path"), py::kw_only(), py::arg("space") = py::none(),
      py::arg("working_space") = py::none(),
      "Reads a picture at the depth of its file: a Picture, upright, premultiplied, RGBA of 8 bits, 16 bits or "
      "floats.\n\n"
      "path: a file, or FILE:LAYER of an EXR. space: its color space, instead of what it says. working_space: a\n"
      "space that the pixels are converted to, as floats. Spaces go by the names of `vorto render --input-space`.\n"
      "Raises Error with the reason; what is to be said besides comes as warnings.");
  module.def(
      "write",
      [](const py::object& path, const py::object& image, py::object space, py::object depth, py::object channels,
         py::object alpha, py::object format, py::object quality, py::object compression) {
        write(path, image, {space, depth, channels, alpha, format, quality, compression});
      },
      py::arg("path"), py::arg("image"), py::kw_only(), py::arg("space") = py::none(), py::arg("depth") = py::none(),
      py::arg("channels") = py::none(), py::arg("alpha") = py::none(), py::arg("format") = py::none(),
      py::arg("quality") = py::none(), py::arg("compression") = py::none(),
      "Writes a Picture, a Bitmap or an array as `vorto render` writes its result; the old file stays until the new "
      "one\n"
      "is complete.\n\n"
      "space: of the file, else display values in integers and light in floats. depth: 8, 16, \"half\" or \"float\". "
      "channels:\n"
      "\"gray\", \"gray+alpha\", \"rgb\" or \"rgba\". alpha: \"keep\", \"opaque\" or \"gray\". format: an extension, "
      "else that of the\n"
      "path. quality: 1 to 100. compression: as \"zip\" or \"deflate:9\". Without a file of their own, integers count "
      "as sRGB\n"
      "and floats as linear Rec.709.");
  module.def("encode", &encode, py::arg("image"), py::arg("format") = "png",
             "The bytes of the file that write() would write in a format, by its extension.");
  module.def(
      "describe", &describe, py::arg("path"),
      "What a picture's file says, without its pixels: a dict of width and height as stored, depth, channels, space "
      "and metadata.");
}

}  // namespace vorto::python
