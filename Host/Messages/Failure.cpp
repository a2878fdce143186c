// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Failure.h"

#include <new>

namespace host {

Failure caughtFailure() {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::bad_alloc&) {
    return {ExitCode::Unexpected, "there is not enough memory"};
  } catch (const std::exception& error) {
    return {ExitCode::Unexpected, error.what()};
  }
}

}  // namespace host
