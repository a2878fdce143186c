// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

// The structures by which libraries hand arrays to one another (DLPack, unversioned), in a capsule named "dltensor"
// that is renamed to "used_dltensor" by who takes it over.
namespace vorto::python {

struct DLDevice {
  std::int32_t type;
  std::int32_t id;
};
inline constexpr std::int32_t kDLProcessor = 1;  // memory that the processor reaches

struct DLDataType {
  std::uint8_t code;
  std::uint8_t bits;
  std::uint16_t lanes;
};
inline constexpr std::uint8_t kDLUnsigned = 1;
inline constexpr std::uint8_t kDLFloat = 2;

struct DLTensor {
  void* data;
  DLDevice device;
  std::int32_t dimensions;
  DLDataType type;
  std::int64_t* shape;
  std::int64_t* strides;  // in elements; null when they follow from the shape
  std::uint64_t byteOffset;
};

struct DLManagedTensor {
  DLTensor tensor;
  void* context;
  void (*release)(DLManagedTensor*);
};

inline constexpr const char* kDLCapsule = "dltensor";
inline constexpr const char* kDLUsedCapsule = "used_dltensor";

}  // namespace vorto::python
