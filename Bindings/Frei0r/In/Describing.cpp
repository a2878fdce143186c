// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Describing.h"

#include "Bindings/Frei0r/In/HelperProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace vorto::frei0r {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongest{10};
constexpr std::size_t kLongestReport = std::size_t{1} << 24;

std::size_t processorCount() {
  cpu_set_t set;
  const int count = ::sched_getaffinity(0, sizeof set, &set) == 0 ? CPU_COUNT(&set) : 1;
  return static_cast<std::size_t>(std::clamp(count, 1, 16));
}

std::string secondsText(std::chrono::milliseconds time) {
  return std::to_string((time.count() + 500) / 1000) +
         (time < std::chrono::milliseconds(1500) ? " second" : " seconds");
}

// One plug-in that is being described.
struct Attempt {
  std::size_t index;
  HelperProcess process;
  Descriptor pipe;
  Bytes bytes;
  Clock::time_point deadline;
};

class Describing {
 public:
  explicit Describing(const std::vector<std::string>& paths) : paths_(paths), results_(paths.size()) {}

  std::vector<Described> run() {
    const std::size_t most = processorCount();
    while (next_ < paths_.size() || !attempts_.empty()) {
      while (next_ < paths_.size() && attempts_.size() < most) begin(next_++);
      wait();
    }
    return std::move(results_);
  }

 private:
  void begin(std::size_t index) {
    Described& result = results_[index];
    Attempt attempt{index, {}, {}, {}, Clock::now() + patience_};
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
      result = {{std::nullopt, "it could not be tried: no pipe"}, false};
      return;
    }
    attempt.pipe = Descriptor(ends[0]);
    const Descriptor theirs(ends[1]);
    if (!attempt.process.start("describe", paths_[index], {theirs.number()}, HelperProcess::Complaints::Dropped,
                               &result.report.reason)) {
      result.isFinal = false;
      return;
    }
    attempts_.push_back(std::move(attempt));
  }

  // Until something has come or a deadline has passed.
  void wait() {
    if (attempts_.empty()) return;
    std::vector<pollfd> waiting;
    Clock::time_point first = Clock::time_point::max();
    for (const Attempt& attempt : attempts_) {
      waiting.push_back({attempt.pipe.number(), POLLIN, 0});
      first = std::min(first, attempt.deadline);
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(first - Clock::now());
    const int ready = ::poll(waiting.data(), waiting.size(), static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    const auto now = Clock::now();
    for (std::size_t i = attempts_.size(); i-- > 0;) {
      const bool hasCome = ready > 0 && waiting[i].revents != 0;
      const bool isOver = hasCome ? !read(attempts_[i]) : now >= attempts_[i].deadline && giveUp(attempts_[i]);
      if (isOver) attempts_.erase(attempts_.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }

  // False when that was all.
  bool read(Attempt& attempt) {
    std::uint8_t buffer[65536];
    const ssize_t count = ::read(attempt.pipe.number(), buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) return true;
    if (count > 0 && attempt.bytes.size() < kLongestReport) {
      attempt.bytes.insert(attempt.bytes.end(), buffer, buffer + count);
      return true;
    }
    const std::string ending = attempt.process.end(std::chrono::seconds(1));
    std::optional<Report> report = reportOf(attempt.bytes);
    Described& result = results_[attempt.index];
    if (report) {
      result.report = std::move(*report);
    } else {
      result.report.reason = "the process that loads it " + ending;
    }
    return false;
  }

  bool giveUp(Attempt& attempt) {
    attempt.process.end(std::chrono::milliseconds(0));
    results_[attempt.index] = {{std::nullopt, "loading it takes longer than " + secondsText(patience_)}, false};
    return true;
  }

  const std::vector<std::string>& paths_;
  const std::chrono::milliseconds patience_ = patience(kLongest);
  std::size_t next_ = 0;
  std::vector<Attempt> attempts_;
  std::vector<Described> results_;
};

}  // namespace

std::vector<Described> describePlugIns(const std::vector<std::string>& paths) {
  return Describing(paths).run();
}

}  // namespace vorto::frei0r
