// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Program/Rendering.h"

#include "Bindings/Frei0r/In/Descriptors.h"
#include "Bindings/Frei0r/In/Orders.h"
#include "Bindings/Frei0r/In/Program/ForeignLibrary.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>

namespace vorto::frei0r {
namespace {

constexpr std::uint32_t kOpaqueBlack = 0xFF000000;  // blue or red first, alpha last

class Renderer {
 public:
  bool start(const std::string& path, std::string* reason) {
    frames_.adopt(kFrames);
    return library_.load(path, reason);
  }

  bool render(const Order& order, std::string* reason) {
    if (!frames_.lookAt(order.size)) {
      *reason = "the memory for its frames is not there";
      return false;
    }
    if (!haveInstance(order.size, reason)) return false;
    for (const auto& [index, value] : order.changed) {
      if (index >= library_.parameterCount()) continue;
      values_[index] = value;
      library_.setValue(instance_, index, value);
    }
    prepareOutput(order.size);
    library_.update(instance_, order.time, frames_);
    return true;
  }

 private:
  bool haveInstance(const FrameSize& size, std::string* reason) {
    if (instance_ && size == size_) return true;
    if (instance_) library_.destruct(std::exchange(instance_, nullptr));
    instance_ = library_.construct(size);
    if (!instance_) {
      *reason =
          "it makes no instance for " + std::to_string(size.width) + " x " + std::to_string(size.height) + " pixels";
      return false;
    }
    size_ = size;
    for (const auto& [index, value] : values_) library_.setValue(instance_, index, value);
    return true;
  }

  // What the plug-in leaves as it is, alpha in most cases, is that of its first input.
  void prepareOutput(const FrameSize& size) const {
    std::uint32_t* const out = frames_.frame(SharedFrames::kOutput);
    if (library_.inputCount() > 0) {
      std::memcpy(out, frames_.frame(0), size.pixels() * sizeof *out);
    } else {
      std::fill_n(out, size.pixels(), kOpaqueBlack);
    }
  }

  ForeignLibrary library_;
  SharedFrames frames_;
  f0r_instance_t instance_ = nullptr;
  FrameSize size_;
  std::map<std::uint32_t, ParameterValue> values_;  // those that were ever set, by index
};

// Nothing at the end.
std::optional<Bytes> receive() {
  ssize_t size;
  do {
    size = ::recv(kSocket, nullptr, 0, MSG_PEEK | MSG_TRUNC);
  } while (size < 0 && errno == EINTR);
  if (size <= 0) return std::nullopt;
  Bytes bytes(static_cast<std::size_t>(size));
  if (::recv(kSocket, bytes.data(), bytes.size(), 0) != size) return std::nullopt;
  return bytes;
}

bool answer(const std::string& reason) {
  return ::send(kSocket, reason.data(), reason.size() + 1, MSG_NOSIGNAL) >= 0;  // with its final 0: never empty
}

}  // namespace

int renderWith(const std::string& path) {
  Renderer renderer;
  std::string refusal;
  const bool isLoaded = renderer.start(path, &refusal);
  while (const std::optional<Bytes> bytes = receive()) {
    const std::optional<Order> order = orderOf(*bytes);
    std::string reason = isLoaded ? "it was given an order that is none" : refusal;
    if (isLoaded && order) {
      reason.clear();
      renderer.render(*order, &reason);
    }
    if (!answer(reason)) break;
  }
  return 0;
}

}  // namespace vorto::frei0r
