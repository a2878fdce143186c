// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"
#include "Host/ImageFiles/FileFormat.h"

#include <optional>
#include <string>
#include <vector>

// What is converted to what, and what files are told about it: rules alone, without pixels or libraries.
//
// Effects work in one space, by default that of the first input. Inputs in others are converted to it, and the result
// to what the file holds: display values in integer files, light in files of floats.
namespace host {

struct ColorInput {
  std::string path;
  ColorSpace space;      // by the file or the user
  std::string remark;    // about its tags (FileSpace.h)
  ColorTag tag;          // of the file
  bool isFloat = false;  // the file holds halves or floats
};

struct InputPlan {
  ColorSpace working;
  std::vector<bool> isConverted;  // which inputs go from their space to the working one
  // What was converted is no integers any more, and light that was none would lose its darks in them.
  bool needsFloat = false;
  std::vector<std::string> sentences;
  bool convertsAnything() const;
};

// `wanted` is the user's working space. Raw converts nothing; without inputs colors are sRGB.
InputPlan planInputs(const std::vector<ColorInput>& inputs, const std::optional<ColorSpace>& wanted);

// A warning where inputs differ and what one of them is in is assumed.
std::optional<std::string> guessworkWarning(const std::vector<ColorInput>& inputs);

// Raw is converted neither way.
bool needsConversion(const ColorSpace& from, const ColorSpace& to);
std::string conversionSentence(const std::string& what, const ColorSpace& from, const ColorSpace& to);

// Of a profile for gray that a file of colors cannot have, or the other way around.
std::string foreignProfileSentence(const ColorInput& input);

struct ColorOutput {
  std::string path;
  FileFormat format = FileFormat::Png;
  bool isFloat = false;        // halves count
  std::optional<bool> isGray;  // or of colors; nothing where the result decides
  bool operator==(const ColorOutput&) const = default;
};

// Whether a file in the space is in what the first input's file says or was taken to be in; so are values that nobody
// converted.
bool isSpaceOfFirst(const ColorSpace& space, const ColorSpace& working, const std::vector<ColorInput>& inputs);

struct OutputPlan {
  ColorSpace space;
  bool isConverted = false;   // the result goes from the working space to it
  ColorTag tag;               // to write
  bool needsProfile = false;  // into the tag belongs an ICC profile, made for the space
  std::vector<std::string> sentences;
};

// `inputs` are those of the plan; `wanted` is the user's space for the file.
OutputPlan planOutput(const InputPlan& inputPlan, const std::vector<ColorInput>& inputs,
                      const std::optional<ColorSpace>& wanted, const ColorOutput& output);

}  // namespace host
