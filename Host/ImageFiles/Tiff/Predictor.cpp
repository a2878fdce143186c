// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/Predictor.h"

#include <algorithm>
#include <cstring>

namespace host::tiff {
namespace {

template <class Word>
Word load(const std::uint8_t* row, std::size_t index) {
  Word word;
  std::memcpy(&word, row + index * sizeof(Word), sizeof(Word));
  return word;
}
template <class Word>
void store(std::uint8_t* row, std::size_t index, Word word) {
  std::memcpy(row + index * sizeof(Word), &word, sizeof(Word));
}

// Each word is the difference to the one of the pixel before.
template <class Word, std::size_t samples>
void sum(std::uint8_t* row, std::size_t size) {
  const std::size_t pixels = size / sizeof(Word) / samples;
  Word sums[samples]{};
  for (std::size_t i = 0; i < pixels; ++i) {
    for (std::size_t sample = 0; sample < samples; ++sample) {
      sums[sample] = static_cast<Word>(sums[sample] + load<Word>(row, i * samples + sample));
      store(row, i * samples + sample, sums[sample]);
    }
  }
}

template <class Word>
void sumPixels(std::uint8_t* row, std::size_t size, std::size_t samples) {
  switch (samples) {
    case 1:
      return sum<Word, 1>(row, size);
    case 2:
      return sum<Word, 2>(row, size);
    case 3:
      return sum<Word, 3>(row, size);
    default:
      return sum<Word, 4>(row, size);
  }
}

template <class Word>
void turn(std::uint8_t* row, std::size_t size) {
  for (std::size_t i = 0; i < size; i += sizeof(Word)) std::reverse(row + i, row + i + sizeof(Word));
}

// The bytes of all samples are sorted by their significance, the highest first.
template <std::size_t sampleSize>
void merge(std::uint8_t* row, std::size_t size, std::uint8_t* scratch) {
  std::memcpy(scratch, row, size);
  const std::size_t count = size / sampleSize;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t byte = 0; byte < sampleSize; ++byte) {
      row[i * sampleSize + byte] = scratch[(sampleSize - 1 - byte) * count + i];
    }
  }
}

}  // namespace

void undoPreparation(const Preparation& preparation, std::uint8_t* row, std::size_t size, std::uint8_t* scratch) {
  if (preparation.predictor == 3) {
    sumPixels<std::uint8_t>(row, size, preparation.samplesPerPixel);
    preparation.sampleSize == 2 ? merge<2>(row, size, scratch) : merge<4>(row, size, scratch);
    return;
  }
  const bool isSummed = preparation.predictor == 2;
  switch (preparation.sampleSize) {
    case 1:
      if (isSummed) sumPixels<std::uint8_t>(row, size, preparation.samplesPerPixel);
      break;
    case 2:
      if (preparation.isTurned) turn<std::uint16_t>(row, size);
      if (isSummed) sumPixels<std::uint16_t>(row, size, preparation.samplesPerPixel);
      break;
    default:
      if (preparation.isTurned) turn<std::uint32_t>(row, size);
      if (isSummed) sumPixels<std::uint32_t>(row, size, preparation.samplesPerPixel);
  }
}

}  // namespace host::tiff
