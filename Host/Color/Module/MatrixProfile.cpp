// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/Module/MatrixProfile.h"

#include "Host/Color/Module/LittleCms.h"

#include <algorithm>
#include <memory>
#include <span>

namespace host {
namespace {

struct BothWays {
  ChannelCurve toLight;
  ChannelCurve fromLight;
};

// Samples at equal distances from 0 to 1; straight lines between them, and nothing beyond.
BothWays ofTable(std::span<const std::uint16_t> values) {
  const auto table = std::make_shared<const std::vector<double>>(values.begin(), values.end());
  const double last = static_cast<double>(values.size() - 1);
  const auto toLight = [table, last](double x) {
    const double at = std::clamp(x, 0.0, 1.0) * last;
    const auto i = std::min(static_cast<std::size_t>(at), table->size() - 2);
    return std::lerp((*table)[i], (*table)[i + 1], at - static_cast<double>(i)) / 65535;
  };
  const auto fromLight = [table, last](double light) {
    const double value = std::clamp(light, 0.0, 1.0) * 65535;
    const auto above = std::lower_bound(table->begin() + 1, table->end() - 1, value);
    const double step = *above - above[-1];
    const double part = step > 0 ? (value - above[-1]) / step : 1;
    return std::clamp((static_cast<double>(above - table->begin()) - 1 + part) / last, 0.0, 1.0);
  };
  return {{toLight, false}, {fromLight, false}};
}

std::optional<BothWays> ofFormula(const cmsToneCurve* curve) {
  const std::shared_ptr<cmsToneCurve> inverse(cmsReverseToneCurve(curve), ToneCurveFreeing());
  if (!inverse) return std::nullopt;
  const auto evaluate = [](const cmsToneCurve* formula, double x) {
    return static_cast<double>(cmsEvalToneCurveFloat(formula, static_cast<float>(x)));
  };
  return BothWays{{[=](double x) { return evaluate(curve, x); }, true},
                  {[=](double x) { return evaluate(inverse.get(), x); }, true}};
}

std::optional<BothWays> readCurve(void* profile, cmsTagSignature tag) {
  const auto* curve = static_cast<const cmsToneCurve*>(cmsReadTag(profile, tag));
  if (!curve || !cmsIsToneCurveMonotonic(curve) || cmsIsToneCurveDescending(curve)) return std::nullopt;
  std::optional<BothWays> both;
  if (cmsGetToneCurveParametricType(curve) != 0) {
    both = ofFormula(curve);
  } else {
    const std::span values(cmsGetToneCurveEstimatedTable(curve), cmsGetToneCurveEstimatedTableEntries(curve));
    if (values.size() >= 2 && std::is_sorted(values.begin(), values.end())) both = ofTable(values);
  }
  const bool risesFromZero = both && std::abs(both->toLight.function(0)) < 1e-6 && both->toLight.function(1) > 0.5;
  return risesFromZero ? both : std::nullopt;
}

bool readColumn(void* profile, cmsTagSignature tag, std::size_t column, Matrix& matrix) {
  const auto* xyz = static_cast<const cmsCIEXYZ*>(cmsReadTag(profile, tag));
  if (!xyz) return false;
  matrix[0][column] = xyz->X;
  matrix[1][column] = xyz->Y;
  matrix[2][column] = xyz->Z;
  return true;
}

double determinant(const Matrix& m) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

}  // namespace

std::optional<MatrixProfile> readMatrixProfile(void* profile) {
  if (cmsGetPCS(profile) != cmsSigXYZData) return std::nullopt;
  for (const cmsTagSignature tables : {cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigDToB0Tag, cmsSigDToB1Tag}) {
    if (cmsIsTag(profile, tables)) return std::nullopt;
  }
  MatrixProfile result;
  result.isGray = cmsGetColorSpace(profile) == cmsSigGrayData;
  if (!result.isGray) {
    if (!readColumn(profile, cmsSigRedColorantTag, 0, result.matrix) ||
        !readColumn(profile, cmsSigGreenColorantTag, 1, result.matrix) ||
        !readColumn(profile, cmsSigBlueColorantTag, 2, result.matrix) || std::abs(determinant(result.matrix)) < 1e-6) {
      return std::nullopt;
    }
  }
  constexpr cmsTagSignature colors[] = {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
  for (std::size_t c = 0; c < 3; ++c) {
    const auto both = readCurve(profile, result.isGray ? cmsSigGrayTRCTag : colors[c]);
    if (!both) return std::nullopt;
    result.toLight[c] = both->toLight;
    result.fromLight[c] = both->fromLight;
  }
  return result;
}

}  // namespace host
