// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/HelperProcess.h"
#include "Bindings/Frei0r/In/Orders.h"

#include <memory>
#include <string>
#include <vector>

namespace vorto::frei0r {

// A foreign plug-in that renders in a process of its own, which is started by the first frame. A plug-in that ends its
// process, or keeps it for longer than 30 seconds a frame (see patience()), fails that frame; the next one gets a new
// process, where what the plug-in kept of earlier frames is gone.
class RenderProcess {
 public:
  explicit RenderProcess(std::string plugIn);  // of a file

  // First for every frame: room for its pixels, in a running process. False, with the reason.
  bool begin(const FrameSize& size, std::string* reason);
  std::uint32_t* input(unsigned index) { return frames_->frame(index); }

  // Renders the inputs into output(). Values by parameter, of which those are sent that the process does not have: at
  // first all, so that results depend on them alone. False, with the reason.
  bool render(double time, const std::vector<ParameterValue>& values, std::string* reason);
  const std::uint32_t* output() const { return frames_->frame(SharedFrames::kOutput); }

 private:
  bool start(std::string* reason);
  bool send(const Bytes& order, std::string* reason);
  bool receive(std::string* reason);
  bool fail(const std::string& what, std::string* reason);

  std::string plugIn_;
  HelperProcess process_;
  Descriptor socket_;
  std::unique_ptr<SharedFrames> frames_;
  FrameSize size_;
  std::vector<ParameterValue> sent_;  // what the process has, by parameter; empty: nothing
};

}  // namespace vorto::frei0r
