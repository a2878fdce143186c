// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/TarnCore/KernelOperations.h"

#include "TarnCore/kernels/AlphaComplement.h"
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/Premultiply.h"
#include "TarnCore/kernels/UnpremultiplyTruncated.h"
#include "TarnCore/kernels/YUV422.h"

#include <algorithm>

namespace kerneltesting {
namespace {

using namespace vorto::kernels;
using oracle::layoutOf;
using oracle::Number;

Background kernelColor(const Color& c) {
  return {c.values[0], c.values[1], c.values[2]};
}

using InPlace = void (*)(To, Count);
using OnBackground = void (*)(To, Count, const Background&);
using Pixel = std::function<void(To, const Color&)>;

// Of a pixel format.
Operation inPlace(const char* name, std::uint32_t code, Run run, Pixel pixel, bool hasBackground = false) {
  const std::size_t size = layoutOf(code).pixelBytes();
  const auto expected = [size, pixel](To p, From, Count n, const Color& b) {
    for (Count i = 0; i < n; ++i) pixel(p + i * size, b);
  };
  const std::string full = name + std::string("Of") + std::to_string(code);
  return {full, size, 0, layoutOf(code).number, hasBackground, run, expected, &oracle::domainOf(layoutOf(code))};
}

Operation inPlace(const char* name, std::uint32_t code, InPlace run, void (*pixel)(const oracle::Layout&, To)) {
  return inPlace(
      name, code, [run](To p, From, Count n, const Color&) { run(p, n); },
      [layout = layoutOf(code), pixel](To p, const Color&) { pixel(layout, p); });
}

Operation unpremultiplying(std::uint32_t code, OnBackground run) {
  return inPlace(
      "unpremultiply", code, [run](To p, From, Count n, const Color& b) { run(p, n, kernelColor(b)); },
      [layout = layoutOf(code)](To p, const Color& b) { oracle::unpremultiply(layout, p, b); }, true);
}

// Unit by unit, in order.
template <class Unit>
Run eachUnit(std::size_t written, std::size_t read, Unit unit) {
  return [=](To to, From from, Count n, const Color& b) {
    for (Count i = 0; i < n; ++i) unit(to + i * written, from + i * read, b);
  };
}

void appendInPlace(std::vector<Operation>& all) {
  for (const std::uint32_t code : {0u, 1u, 4u, 6u, 8u, 9u}) {
    const oracle::Layout layout = layoutOf(code);
    std::uint8_t mask[16] = {};
    std::uint8_t values[16] = {};
    std::fill_n(layout.channel(mask, layout.alpha), oracle::bytesOf(layout.number), std::uint8_t{255});
    for (std::size_t i = 0; i < 16; i += layout.pixelBytes()) {
      std::copy_n(mask, layout.pixelBytes(), mask + i);
      oracle::setAlpha(layout, values + i, 0.3);
    }
    const auto alpha = BytePattern::ofPixel(mask);
    const auto value = BytePattern::ofPixel(values);
    all.push_back(inPlace(
        "replace", code,
        [=](To p, From, Count n, const Color&) { replaceBytes(p, n * layout.pixelBytes(), alpha, value); },
        [=](To p, const Color&) { oracle::setAlpha(layout, p, 0.3); }));
    if (code < oracle::kHalf) {
      all.push_back(inPlace(
          "complement", code,
          [=](To p, From, Count n, const Color&) { complementBytes(p, n * layout.pixelBytes(), alpha); },
          [=](To p, const Color&) { oracle::complementAlpha(layout, p); }));
    }
  }
  all.push_back(inPlace("complement", oracle::kHalf, complementAlphaHalf, oracle::complementAlpha));
  all.push_back(inPlace("complement", oracle::kFloat, complementAlphaFloat, oracle::complementAlpha));
  all.push_back(inPlace("premultiply", oracle::kRGBA8, premultiplyRGBA8, oracle::premultiply));
  all.push_back(inPlace("premultiply", oracle::kARGB8, premultiplyARGB8, oracle::premultiply));
  all.push_back(unpremultiplying(oracle::kRGBA8, unpremultiplyRGBA8));
  all.push_back(unpremultiplying(oracle::kARGB8, unpremultiplyARGB8));
  all.push_back(unpremultiplying(oracle::kRGBA16, unpremultiplyRGBA16));
  all.push_back(unpremultiplying(oracle::kHalf, unpremultiplyRGBAHalf));
  all.push_back(unpremultiplying(oracle::kFloat, unpremultiplyRGBAFloat));
  all.push_back(inPlace(
      "truncate", oracle::kARGB8, [](To p, From, Count n, const Color&) { unpremultiplyTruncatedInPlace(p, n, 4); },
      [](To p, const Color&) { oracle::unpremultiplyTruncated(p); }));
  all.push_back({"swap", 8, 0, Number::Byte, false,
                 [](To p, From, Count n, const Color&) { swapBytes(p, p + 4 * n, 4 * n); },
                 [](To p, From, Count n, const Color&) { std::rotate(p, p + 4 * n, p + 8 * n); }});
}

void appendShuffles(std::vector<Operation>& all, bool streamed) {
  const std::string suffix = streamed ? "Streamed" : "";
  all.push_back({"copy" + suffix, 1, 1, Number::Byte, false,
                 [=](To to, From from, Count n, const Color&) { copyBytes(to, from, n, streamed); },
                 [](To to, From from, Count n, const Color&) {
                   const Bytes before(from, from + n);
                   std::copy(before.begin(), before.end(), to);
                 }});
  for (const std::uint32_t code : {0u, 4u, 9u}) {
    const oracle::Layout layout = layoutOf(code);
    const std::size_t size = layout.pixelBytes();
    std::uint8_t bytes[16];
    for (std::uint8_t i = 0; i < 16; ++i) bytes[i] = static_cast<std::uint8_t>(i % size);
    for (std::size_t i = 0; i < 16; i += size) oracle::rotate(layout, bytes + i, true);
    BytePattern order = BytePattern::ofPixel(bytes);
    for (std::size_t i = 0; i < 16; ++i) order.bytes[i] = static_cast<std::uint8_t>(order.bytes[i] + i / size * size);
    const auto pixel = [=](To to, From from, const Color&) {
      Bytes in(from, from + size);
      oracle::rotate(layout, in.data(), true);
      std::copy(in.begin(), in.end(), to);
    };
    all.push_back(
        {"shuffleOf" + std::to_string(code) + suffix, size, size, Number::Byte, false,
         [=](To to, From from, Count n, const Color&) { shuffleBytes(to, from, size * n, order, size, streamed); },
         eachUnit(size, size, pixel)});
  }
}

void appendColors(std::vector<Operation>& all, bool streamed) {
  const std::string suffix = streamed ? "Streamed" : "";
  all.push_back({"YUVtoARGB" + suffix, 8, 4, Number::Byte, false,
                 [=](To to, From from, Count n, const Color&) { convertYUVtoARGB(to, from, n, streamed); },
                 eachUnit(8, 4, [](To to, From from, const Color&) { oracle::pairToARGB(to, from); }),
                 &oracle::yuvDomain()});
  all.push_back({"ARGBtoYUV" + suffix, 4, 8, Number::Byte, false,
                 [=](To to, From from, Count n, const Color&) { convertARGBtoYUV(to, from, n, streamed); },
                 eachUnit(4, 8, [](To to, From from, const Color&) { oracle::pairToYUV(to, from); }),
                 &oracle::argbDomain()});
  for (const bool isOdd : {false, true}) {
    for (const std::size_t step : {4u, 8u}) {
      // From an odd column the pair begins two bytes before: the first unit of what is read is left out.
      const auto skipped = [=](Count n) { return isOdd && n > 0 ? n - 1 : n; };
      const std::size_t first = isOdd ? 2 : 0;
      all.push_back({"laggingBy" + std::to_string(step) + (isOdd ? "Odd" : "Even") + suffix, step, 2, Number::Byte,
                     false,
                     [=](To to, From from, Count n, const Color&) {
                       convertLaggingYUVtoARGB(to, step, from + first, isOdd, skipped(n), streamed);
                     },
                     [=](To to, From from, Count n, const Color&) {
                       oracle::laggingRow(to, step, from + first, isOdd, skipped(n));
                     },
                     &oracle::yuvDomain()});
    }
  }
  for (const auto& [to, code] : {std::pair{DepthLayout::ARGB8, 1u}, {DepthLayout::RGBA16, 4u}, {DepthLayout::RGBAFloat, 9u}}) {
    for (const auto& [from, fromCode] : {std::pair{DepthLayout::RGBA8, 0u}, {DepthLayout::ARGB8, 1u},
                                         {DepthLayout::RGBA16, 4u}, {DepthLayout::RGBAHalf, 8u},
                                         {DepthLayout::RGBAFloat, 9u}}) {
      const oracle::Layout out = layoutOf(code);
      const oracle::Layout in = layoutOf(fromCode);
      all.push_back({"depth" + std::to_string(code) + "From" + std::to_string(fromCode) + suffix, out.pixelBytes(),
                     in.pixelBytes(), out.number, false,
                     [=, t = to, f = from](To o, From i, Count n, const Color&) { convertDepth(o, t, i, f, n, streamed); },
                     eachUnit(out.pixelBytes(), in.pixelBytes(),
                              [=](To o, From i, const Color&) { oracle::convert(out, o, in, i); }),
                     &oracle::domainOf(in)});
    }
  }
}

void appendTruncations(std::vector<Operation>& all) {
  for (const std::size_t step : {4u, 6u, 16u}) {
    all.push_back({"truncateBy" + std::to_string(step), step, step, Number::Byte, true,
                   [=](To to, From from, Count n, const Color& b) {
                     unpremultiplyTruncated(to, from, n, step, kernelColor(b));
                   },
                   eachUnit(step, step,
                            [](To to, From from, const Color& b) { oracle::unpremultiplyTruncated(to, from, b); }),
                   step == 4 ? &oracle::domainOf(layoutOf(oracle::kARGB8)) : nullptr});
  }
}

}  // namespace

const std::vector<Operation>& operations() {
  static const std::vector<Operation> all = [] {
    std::vector<Operation> made;
    appendInPlace(made);
    appendTruncations(made);
    for (const bool streamed : {false, true}) {
      appendShuffles(made, streamed);
      appendColors(made, streamed);
    }
    return made;
  }();
  return all;
}

}  // namespace kerneltesting
