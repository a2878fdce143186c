// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <lcms2.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>

// Owners of what Little CMS hands out.
namespace host {

struct ProfileClosing {
  void operator()(void* handle) const { cmsCloseProfile(handle); }
};
using Profile = std::unique_ptr<void, ProfileClosing>;

struct TransformDeleting {
  void operator()(void* handle) const { cmsDeleteTransform(handle); }
};
using LibraryTransform = std::unique_ptr<void, TransformDeleting>;

struct ToneCurveFreeing {
  void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using ToneCurve = std::unique_ptr<cmsToneCurve, ToneCurveFreeing>;

// The library's state, with the last error that it reported.
class ProfileContext {
 public:
  ProfileContext() : context_(cmsCreateContext(nullptr, this)) {
    if (!context_) throw std::bad_alloc();
    cmsSetLogErrorHandlerTHR(context_, [](cmsContext context, cmsUInt32Number, const char* text) {
      static_cast<ProfileContext*>(cmsGetContextUserData(context))->error_ = text;
    });
  }
  ~ProfileContext() { cmsDeleteContext(context_); }
  ProfileContext(const ProfileContext&) = delete;
  ProfileContext& operator=(const ProfileContext&) = delete;

  operator cmsContext() const { return context_; }
  [[noreturn]] void fail(const std::string& what) const {
    throw std::runtime_error(what + (error_.empty() ? "" : ": " + error_));
  }

 private:
  cmsContext context_;
  std::string error_;
};

}  // namespace host
