// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramReadout.h"

#include "Controls/VRTLocalizedText.h"

#include <QLocale>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double kLevelsOf8Bits = 255;
constexpr int kStepOf16Bits = 257;  // between the middles of two bins

QString rangeText(int first, int last) {
  QLocale locale;
  locale.setNumberOptions(QLocale::OmitGroupSeparator);
  if (first == last) return locale.toString(first);
  return QStringLiteral("%1\u2013%2").arg(locale.toString(first), locale.toString(last));
}

}  // namespace

VRTHistogramReadout VRTHistogramReadoutAt(const TCHistogram::Counts& counts, std::size_t bin) {
  VRTHistogramReadout readout;
  readout.bin = std::min(bin, VRTHistogramLastBin);
  readout.count = counts[readout.bin];
  const auto all = std::accumulate(std::begin(counts), std::end(counts), std::uint64_t{0});
  if (all == 0) return readout;
  const auto shareOf = [&](std::uint64_t count) { return static_cast<double>(count) / static_cast<double>(all); };
  readout.share = shareOf(readout.count);
  readout.black = shareOf(counts[0]);
  readout.white = shareOf(counts[VRTHistogramLastBin]);
  return readout;
}

std::size_t VRTHistogramBinOfColumn(double column, double width) {
  const double bin = std::floor(column / width * TCHistogram::Bins);
  if (!(bin > 0)) return 0;
  return bin < VRTHistogramLastBin ? static_cast<std::size_t>(bin) : VRTHistogramLastBin;
}

double VRTHistogramColumnOfBin(std::size_t bin, double width) {
  return (static_cast<double>(bin) + 0.5) / TCHistogram::Bins * width;
}

QString VRTHistogramLevelText(std::size_t bin, std::uint32_t bitsPerChannel) {
  const int level = static_cast<int>(std::min(bin, VRTHistogramLastBin));
  const bool isLast = bin >= VRTHistogramLastBin;
  const QString part = QLocale().toString(isLast ? 1.0 : level / kLevelsOf8Bits, 'f', 3);
  if (bitsPerChannel == 8) {
    return QStringLiteral("%1 (%2)").arg(rangeText(level, isLast ? level + 1 : level), part);
  }
  if (bitsPerChannel == 16) {
    // Half a step to either side of the middle, which no whole number meets.
    const int first = std::max(0, level * kStepOf16Bits - kStepOf16Bits / 2);
    const int last = isLast ? 65535 : level * kStepOf16Bits + kStepOf16Bits / 2;
    return QStringLiteral("%1 (%2)").arg(rangeText(first, last), part);
  }
  return level == 0 ? QStringLiteral("\u2264 ") + part : isLast ? QStringLiteral("\u2265 ") + part : part;
}

QString VRTHistogramPercentText(double share) {
  constexpr double kLeast = 0.0001;
  const QLocale locale;
  const bool isTiny = share > 0 && share < kLeast;
  const double percent = 100 * (isTiny ? kLeast : share);
  const QString number = locale.toString(percent, 'f', percent >= 99.95 || percent == 0 ? 0 : percent >= 10 ? 1 : 2);
  return (isTiny ? QStringLiteral("< ") : QString()) + VRTLocalizedText("%1 %").arg(number);
}

QString VRTHistogramCountText(const VRTHistogramReadout& readout) {
  const auto count = static_cast<qulonglong>(readout.count);
  return QStringLiteral("%1 = %2").arg(QLocale().toString(count), VRTHistogramPercentText(readout.share));
}

QString VRTHistogramBlackText(const VRTHistogramReadout& readout) {
  return VRTLocalizedText("Black %1").arg(VRTHistogramPercentText(readout.black));
}

QString VRTHistogramWhiteText(const VRTHistogramReadout& readout) {
  return VRTLocalizedText("White %1").arg(VRTHistogramPercentText(readout.white));
}

QString VRTHistogramReadoutText(const VRTHistogramReadout& readout, std::uint32_t bitsPerChannel) {
  const QStringList parts{VRTHistogramLevelText(readout.bin, bitsPerChannel), VRTHistogramCountText(readout),
                          VRTHistogramBlackText(readout), VRTHistogramWhiteText(readout)};
  return parts.join(QStringLiteral(", "));
}
