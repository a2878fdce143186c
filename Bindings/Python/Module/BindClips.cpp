// SPDX-License-Identifier: BSD-3-Clause
#include "ClipFiles.h"
#include "Errors.h"
#include "Module.h"
#include "Pictures.h"
#include "Remarks.h"

#include <pybind11/stl.h>

#include "Host/Clips/TimeCodes.h"
#include "Host/Color/SpaceNames.h"
#include "Host/Messages/Json.h"
#include "Host/Rendering/FrameTimes.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace vorto::python {
namespace {

py::object fraction(const host::Rational& rational) {
  return py::module_::import("fractions").attr("Fraction")(rational.numerator, rational.denominator);
}

host::Rational rateOf(const py::object& rate) {
  const std::string text = py::isinstance<py::float_>(rate) ? host::numberText(rate.cast<double>()) : optionText(rate);
  const auto parsed = host::parsedFrameRate(text);
  if (!parsed) throw py::value_error("rate: a clip takes 0.001 to 1000000 frames per second");
  return *parsed;
}

std::chrono::seconds patienceOf(double seconds) {
  if (!(seconds >= 0.1 && seconds <= 86400)) throw py::value_error("patience: give 0.1 to 86400 seconds");
  return std::chrono::seconds(static_cast<std::int64_t>(std::ceil(seconds)));
}

// What Python knows as vorto.Clip.
class Clip {
 public:
  Clip(const py::object& path, double patience) : path_(pathText(path)) {
    const auto wait = patienceOf(patience);
    file_ = withoutLock([&] { return std::make_unique<ClipFile>(path_, wait); });
    info_ = file_->info();
  }

  const host::ClipInfo& info() const { return info_; }
  const std::string& path() const { return path_; }
  std::size_t count() const { return info_.times.size(); }

  Picture frame(std::int64_t index) {
    const auto size = static_cast<std::int64_t>(count());
    const std::int64_t place = index < 0 ? index + size : index;
    if (place < 0 || place >= size) throw py::index_error("the clip has " + std::to_string(size) + " frames");
    thread_.check("the clip " + path_);
    if (!file_) throw Error("the clip " + path_ + " is closed");
    host::HeldPicture held = withoutLock([&] { return file_->frame(static_cast<std::uint32_t>(place)); });
    const auto bitmap = ownBitmap(std::exchange(held.bitmap, nullptr));
    return {bitmap, std::move(held)};
  }

  // The frame that is shown then: the last one that began.
  std::size_t placeAt(double seconds) const {
    std::size_t place = 0;
    while (place + 1 < count() && info_.seconds(place + 1) <= seconds) ++place;
    return place;
  }

  std::optional<std::string> timeCode(std::int64_t index) const {
    const auto& first = info_.picture.metadata.timeCode;
    if (!first) return std::nullopt;
    const double rate = host::valueOf(info_.rate);
    const auto code =
        host::advancedTimeCode(*first, rate, static_cast<std::uint64_t>(std::max<std::int64_t>(index, 0)));
    return code ? std::optional(host::timeCodeText(*code, rate)) : std::nullopt;
  }

  void close() {
    const std::unique_ptr<ClipFile> file = std::move(file_);
    const py::gil_scoped_release released;
  }

  std::string summary() const {
    const host::PictureInfo& picture = info_.picture;
    return "<vorto.Clip " + path_ + ": " + std::to_string(count()) + " frames of " + std::to_string(picture.width) +
           " x " + std::to_string(picture.height) + ", " + info_.codec + ">";
  }

 private:
  const std::string path_;
  const OwnThread thread_;
  std::unique_ptr<ClipFile> file_;
  host::ClipInfo info_;
};

struct ClipWishes {
  py::object like, rate, codec, quality, speed, sampling, audio, space, channels;
  double patience = 60;
};

// What Python knows as vorto.ClipWriter.
class Writer {
 public:
  Writer(const py::object& path, const ClipWishes& wishes) : path_(pathText(path)) {
    const Clip* like = wishes.like.is_none() ? nullptr : &wishes.like.cast<const Clip&>();
    const host::ClipTarget target = targetOf(like, wishes);
    host::HeldOutput output;
    output.path = path_;
    output.format = host::FileFormat::Clip;
    if (!wishes.space.is_none()) output.space = host::spaceOfOption("space=", wishes.space.cast<std::string>());
    output.channels = host::parsedChannels(optionText(wishes.channels));
    const auto wait = patienceOf(wishes.patience);
    file_ = withoutLock([&] { return std::make_unique<ClipFileWriter>(target, times_, output, wait); });
  }

  void write(const py::object& image) {
    check();
    const GivenPicture picture = givenPicture(image);
    try {
      withoutLock([&] { file_->write(picture.held); });
    } catch (...) {
      file_ = nullptr;
      throw;
    }
  }

  void finish() {
    if (!file_) return;
    thread_.check("the clip " + path_);
    const std::unique_ptr<ClipFileWriter> file = std::move(file_);
    withoutLock([&] { file->finish(); });
  }

  void abandon() { file_ = nullptr; }

 private:
  void check() const {
    thread_.check("the clip " + path_);
    if (!file_) throw Error("the clip " + path_ + " is closed");
  }

  host::ClipTarget targetOf(const Clip* like, const ClipWishes& wishes) {
    host::ClipTarget target;
    target.path = path_;
    const std::string extension = std::filesystem::path(path_).extension().string();
    target.container = extension.empty() ? "" : extension.substr(1);
    target.settings = {optionText(wishes.codec), optionText(wishes.speed), optionText(wishes.sampling),
                       wishes.quality.is_none() ? -1 : wishes.quality.cast<int>()};
    if (!wishes.rate.is_none()) {
      times_.rate = rateOf(wishes.rate);
    } else if (like) {
      times_.rate = like->info().rate;
    }
    times_.timeBase = host::unitOfRate(times_.rate);
    if (like && wishes.rate.is_none() && like->info().isUneven) {
      times_ = {like->info().rate, like->info().timeBase, like->info().times, like->info().end};
    }
    target.rate = times_.rate;
    target.timeBase = times_.timeBase;
    target.audio = audioOf(like, wishes);
    return target;
  }

  static std::optional<host::ClipAudio> audioOf(const Clip* like, const ClipWishes& wishes) {
    const bool isSwitch = py::isinstance<py::bool_>(wishes.audio);
    if (isSwitch && !wishes.audio.cast<bool>()) return std::nullopt;
    if (!wishes.audio.is_none() && !isSwitch) return host::ClipAudio{pathText(wishes.audio), 0, std::nullopt};
    if (!like || !like->info().hasAudio || !wishes.rate.is_none()) return std::nullopt;
    return host::ClipAudio{like->path(), like->info().delay, like->info().duration()};
  }

  const std::string path_;
  const OwnThread thread_;
  ClipTimes times_;
  std::unique_ptr<ClipFileWriter> file_;
};

py::list timesOf(const Clip& clip) {
  py::list times;
  for (std::size_t i = 0; i < clip.count(); ++i) times.append(clip.info().seconds(i));
  return times;
}

void bindClip(py::module_& module) {
  py::class_<Clip>(
      module, "Clip",
      "A clip, frame by frame: `for frame in vorto.Clip(path)` gives Pictures, clip[i] any of them. Frames come\n"
      "one after another at best; others are sought. A process of its own decodes them, which ends with the\n"
      "object; a damaged clip is read as far as it can be, which comes as a warning. One thread uses it.")
      .def(py::init<const py::object&, double>(), py::arg("path"), py::kw_only(), py::arg("patience") = 60.0,
           "patience: the seconds that one frame may take to be decoded. Raises Error naming the file.")
      .def("__len__", &Clip::count, "How many frames there are.")
      .def("__getitem__", &Clip::frame, py::arg("index"),
           "A frame by its place, from 0 on, or from the end by -1: a Picture.")
      .def(
          "at", [](Clip& self, double seconds) { return self.frame(static_cast<std::int64_t>(self.placeAt(seconds))); },
          py::arg("seconds"), "The frame that is shown so many seconds from the start.")
      .def("time_code", &Clip::timeCode, py::arg("index") = 0,
           "\"01:02:03:04\" of a frame, with a semicolon where frames are dropped; None without one.")
      .def_property_readonly("path", &Clip::path, "As it was given.")
      .def_property_readonly(
          "width", [](const Clip& self) { return self.info().picture.width; }, "In pixels, upright.")
      .def_property_readonly(
          "height", [](const Clip& self) { return self.info().picture.height; }, "In pixels, upright.")
      .def_property_readonly(
          "rate", [](const Clip& self) { return fraction(self.info().rate); },
          "Frames per second, a Fraction; the average where they come unevenly.")
      .def_property_readonly(
          "is_uneven", [](const Clip& self) { return self.info().isUneven; }, "Whether frames do not come at one rate.")
      .def_property_readonly(
          "duration", [](const Clip& self) { return self.info().duration(); }, "In seconds.")
      .def_property_readonly("times", &timesOf, "From when on each frame is shown, in seconds since the first.")
      .def_property_readonly(
          "codec", [](const Clip& self) { return self.info().codec; }, "As people know it: \"H.264\", \"ProRes 4444\".")
      .def_property_readonly(
          "sampling", [](const Clip& self) { return self.info().sampling; }, "What is stored, as in \"yuv420p10le\".")
      .def_property_readonly(
          "has_audio", [](const Clip& self) { return self.info().hasAudio; }, "Whether there is sound.")
      .def("close", &Clip::close, "Ends the process. No frame can be had afterwards.")
      .def("__enter__", [](py::object self) { return self; })
      .def("__exit__", [](Clip& self, const py::args&) { self.close(); })
      .def("__repr__", &Clip::summary);
}

void bindWriter(py::module_& module) {
  py::class_<Writer>(
      module, "ClipWriter",
      "Writes a clip frame by frame, in a process of its own: .mp4, .mov, .mkv, .webm or .avi. Best in a with\n"
      "statement: it ends well with close(), and an exception leaves the old file as it was, as does a writer\n"
      "that is never closed. One thread uses it.")
      .def(
          py::init([](const py::object& path, py::object like, py::object rate, py::object codec, py::object quality,
                      py::object speed, py::object sampling, py::object audio, py::object space, py::object channels,
                      double patience) {
            return std::make_unique<Writer>(
                path, ClipWishes{like, rate, codec, quality, speed, sampling, audio, space, channels, patience});
          }),
          py::arg("path"), py::kw_only(), py::arg("like") = py::none(), py::arg("rate") = py::none(),
          py::arg("codec") = py::none(), py::arg("quality") = py::none(), py::arg("speed") = py::none(),
          py::arg("sampling") = py::none(), py::arg("audio") = py::none(), py::arg("space") = py::none(),
          py::arg("channels") = py::none(), py::arg("patience") = 60.0,
          "like: a Clip whose times and audio are taken. rate: frames per second (a number, a Fraction or text), else\n"
          "those of `like`, else 25. codec, quality (1 to 100), speed, sampling: as `vorto render` has them. audio: a "
          "file\n"
          "whose audio goes along, or False for none. space: the color space of the clip. channels:\n"
          "\"rgb\" or \"rgba\", else as the first frame has them; without a file, alpha is kept where it is not full.")
      .def("write", &Writer::write, py::arg("image"),
           "The next frame: a Picture, a Bitmap or an array. The first one decides size, depth and alpha.")
      .def("close", &Writer::finish,
           "Completes the file. Raises Error where that does not succeed; the old file then stays.")
      .def("__enter__", [](py::object self) { return self; })
      .def("__exit__", [](Writer& self, const py::object& type, const py::object&, const py::object&) {
        if (type.is_none()) {
          self.finish();
        } else {
          self.abandon();
        }
      });
}

}  // namespace

void bindClips(py::module_& module) {
  bindClip(module);
  bindWriter(module);
}

}  // namespace vorto::python
