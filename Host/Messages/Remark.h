// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>
#include <string>

namespace host {

// Something that is said and is no failure.
struct Remark {
  std::string text;   // one line
  std::string about;  // remarks of several processes that are about the same say it once
  bool operator==(const Remark&) const = default;
};

// Says something on standard error that is no failure, in one line. Without `about` the text is what it is about.
void remark(const std::string& text, const std::string& about = "");

// As long as one lives, remarks of this thread go there instead; then where they went before.
class RemarksRedirected {
 public:
  using Taker = std::function<void(Remark)>;
  explicit RemarksRedirected(Taker taker);
  ~RemarksRedirected();
  RemarksRedirected(const RemarksRedirected&) = delete;
  RemarksRedirected& operator=(const RemarksRedirected&) = delete;

 private:
  Taker former_;
};

}  // namespace host
