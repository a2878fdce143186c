// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Processes/Message.h"

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Where a child process finds its end of the connection, and from which number on what else it was given.
inline constexpr int kChildSocket = 3;
inline constexpr int kFirstInherited = 4;

// A program that runs for this one and is connected with it. It ends when this one does, also when that is killed.
class ChildProcess {
 public:
  // `program` is a path. Of the open descriptors the child has standard output and error, its end of the connection as
  // kChildSocket, and copies of `inherited` from kFirstInherited on; its standard input is `input`, or empty for -1.
  // Throws Failure when it cannot be started. Unwatched nobody waits for that: a program that is none ends with the
  // exit code 127.
  enum class Start { Watched, Unwatched };
  ChildProcess(const std::string& program, const std::vector<std::string>& arguments, const std::vector<int>& inherited,
               int input = -1, Start start = Start::Watched);
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&& other) noexcept;
  ~ChildProcess();  // stop()

  MessageSocket& socket() { return socket_; }
  const MessageSocket& socket() const { return socket_; }
  pid_t id() const { return id_; }

  // Ends it, unless it has ended already: by a signal at which it can clear up, after a second by one at which it
  // cannot.
  void stop();

  // Ends it at once, without a chance to clear up, and does not wait until it has ended.
  void kill();
  // Whether it has ended, within that time.
  bool hasEnded(std::chrono::milliseconds patience);

  std::optional<std::string> causeIfEnded() const;  // cause() of one that hasEnded(); nothing of others

  // Waits for its end, a second at most before it is stopped: "it was ended by signal 11 (Segmentation fault)",
  // "it ended with exit code 1", "it did not end"; and the same without a sentence: "signal 11 (Segmentation fault)".
  std::string ending();
  std::string cause();

 private:
  bool waitForEnd();

  pid_t id_ = -1;
  MessageSocket socket_;
  int status_ = 0;  // as waitpid() gives it
};

// How many descriptors this process, and those that it starts, may have open: raised to as many as it may raise it to.
std::size_t mostDescriptors();

// A program that is installed beside the libraries, by its name. Throws Failure when it is not there.
std::string helperProgram(const std::string& name);

}  // namespace host
