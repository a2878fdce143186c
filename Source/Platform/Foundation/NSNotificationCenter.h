// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

class NSObject;

// What observers are told.
struct NSNotification {
  std::string name;
  const void* object = nullptr;  // the sender; an identity, never dereferenced by the center
};

// Tells everyone who observes a name. Posting is synchronous, in the order of registration; an observer may add and
// remove observers, itself included, while it is told.
class TARN_EXPORT NSNotificationCenter {
 public:
  // Ends the observation when it is destroyed; safe after the center is gone.
  class TARN_EXPORT Observation {
   public:
    Observation() = default;
    Observation(Observation&&) noexcept = default;
    Observation& operator=(Observation&& other) noexcept;
    ~Observation();

   private:
    friend class NSNotificationCenter;
    struct Entry;
    std::shared_ptr<Entry> entry_;
  };

  // The one of the process.
  static NSNotificationCenter& defaultCenter();

  NSNotificationCenter();
  ~NSNotificationCenter();
  NSNotificationCenter(const NSNotificationCenter&) = delete;
  NSNotificationCenter& operator=(const NSNotificationCenter&) = delete;

  // A null sender means any sender.
  [[nodiscard]] Observation addObserver(std::string_view name, const void* sender,
                                        std::function<void(const NSNotification&)> handler);
  void postNotificationName(std::string_view name, const void* sender);

 private:
  struct State;
  std::shared_ptr<State> state_;
};
