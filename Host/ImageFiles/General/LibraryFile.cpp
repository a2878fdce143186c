// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/LibraryFile.h"

#include "Host/ImageFiles/Damaged.h"
#include "Platform/Foundation/NSReason.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace host {

LibraryFile::~LibraryFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::unique_ptr<OIIO::ImageInput> LibraryFile::open(const char* format, OIIO::ImageSpec* spec, std::string* reason) {
  auto input = OIIO::ImageInput::create(format);
  if (!input) {
    NSRefuse(reason, cleanedMessage(OIIO::geterror()));
    return nullptr;
  }
  OIIO::ImageSpec configuration;
  configuration.attribute("oiio:UnassociatedAlpha", 1);  // alpha as the file has it: we multiply ourselves
  std::string name = "image";
  if (input->supports("ioproxy")) {
    input->set_ioproxy(&proxy_);
  } else {
    name = nameInMemory();
  }
  if (name.empty() || !input->open(name, *spec, configuration)) {
    NSRefuse(reason, cleanedMessage(input->geterror()));
    return nullptr;
  }
  return input;
}

std::string LibraryFile::nameInMemory() {
  descriptor_ = memfd_create("image", MFD_CLOEXEC);
  for (std::span<const std::uint8_t> rest = bytes_; descriptor_ >= 0 && !rest.empty();) {
    const ssize_t count = write(descriptor_, rest.data(), rest.size());
    if (count <= 0) return {};
    rest = rest.subspan(static_cast<std::size_t>(count));
  }
  return descriptor_ < 0 ? "" : "/proc/self/fd/" + std::to_string(descriptor_);
}

OIIO::TypeDesc typeOf(SampleType sample) {
  switch (sample) {
    case SampleType::UInt8:
      return OIIO::TypeDesc::UINT8;
    case SampleType::UInt16:
      return OIIO::TypeDesc::UINT16;
    case SampleType::Float:
      break;
  }
  return OIIO::TypeDesc::FLOAT;
}

std::string cleanedMessage(std::string message) {
  for (const std::string name : {" image file \"image\"", " (\"image\")", " \"image\""}) {
    for (std::size_t at; (at = message.find(name)) != std::string::npos;) message.erase(at, name.size());
  }
  for (std::size_t at; (at = message.find("/proc/self/fd/")) != std::string::npos;) {
    const std::size_t end = message.find_first_not_of("0123456789", at + 14);
    message.erase(at, end == std::string::npos ? end : end - at);
  }
  std::ranges::replace(message, '\n', ' ');
  while (!message.empty() && (message.back() == ' ' || message.back() == '.')) message.pop_back();
  return message.empty() ? kDamaged : message;
}

}  // namespace host
