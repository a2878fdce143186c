#include "Effects/GradientRamp/GradientRampKernel.h"

#include "Effects/Support/PixelLayout.h"

namespace vorto::effects {
namespace {

template <class Channel>
GradientEntry<Channel> nearestEntry(const GradientEntry<Channel>* table, double position) {
  const double clamped = position > 0 ? std::min(position, 1.0) : 0.0;
  return table[static_cast<std::size_t>(clamped * (gradientSteps - 1) + 0.5)];
}

GradientEntry<float> nearestEntry(const GradientEntry<float>* table, double position) {
  return gradientEntryAt(table, static_cast<float>(position));
}

}  // namespace

template <class Layout>
void gradientRampRow(double start, double step, typename Layout::Channel* out, std::size_t count,
                     const GradientEntry<typename Layout::Channel>* table) {
  using Channel = typename Layout::Channel;
  constexpr Channel opaque = std::is_same_v<Channel, float> ? Channel{1} : std::numeric_limits<Channel>::max();
  for (std::size_t i = 0; i < count; ++i, out += Layout::channels) {
    storeEntry<Layout>(nearestEntry(table, start + static_cast<double>(i) * step), opaque, out);
  }
}

template void gradientRampRow<RGBA8>(double, double, std::uint8_t*, std::size_t, const GradientEntry<std::uint8_t>*);
template void gradientRampRow<RGBA16>(double, double, std::uint16_t*, std::size_t, const GradientEntry<std::uint16_t>*);
template void gradientRampRow<RGBAFloat>(double, double, float*, std::size_t, const GradientEntry<float>*);

}  // namespace vorto::effects
