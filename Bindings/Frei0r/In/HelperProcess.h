// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/types.h>

#include <chrono>
#include <initializer_list>
#include <string>

namespace vorto::frei0r {

// A descriptor that is closed with its owner; -1 for none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept;
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();
  int number() const { return number_; }
  void close();

 private:
  int number_ = -1;
};

// Seconds that a plug-in may take: VORTO_FREI0R_TIMEOUT where that is a number above 0, otherwise the given ones.
std::chrono::milliseconds patience(std::chrono::seconds unlessToldOtherwise);

// vorto-frei0r-runner, which stands beside the framework's library: its path, empty when it is not there.
const std::string& helperProgram();

// A process of vorto-frei0r-runner. It ends with its owner, and with this process, whatever the plug-in is doing.
class HelperProcess {
 public:
  enum class Complaints { Shown, Dropped };  // what the plug-in writes on standard error; its output is dropped

  HelperProcess() = default;
  HelperProcess(HelperProcess&& other) noexcept;
  HelperProcess& operator=(HelperProcess&& other) noexcept;
  ~HelperProcess();  // ends it

  // The descriptors become 4, 5, ... there. False, with the reason, when it cannot be started.
  bool start(const char* task, const std::string& plugIn, std::initializer_list<int> descriptors, Complaints complaints,
             std::string* reason);
  bool isRunning() const { return id_ > 0; }  // as far as anybody has noticed

  // Ends it, after `patience` if need be by force, and says how it ended: "was ended by signal 11 (Segmentation
  // fault)", "ended with exit code 3", "ended".
  std::string end(std::chrono::milliseconds patience);

 private:
  pid_t id_ = 0;
  Descriptor lifeline_;
};

}  // namespace vorto::frei0r
