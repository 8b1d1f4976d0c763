// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdexcept>
#include <string>

#include "pdflib/LibraryErrorCodes.h"

namespace engine {

// A failure: the code that LastErrorCode() returns for it, and a sentence for a log.
class EngineError : public std::runtime_error {
 public:
  EngineError(LibraryErrorCode code, const std::string& message) : std::runtime_error(message), code_(code) {}

  LibraryErrorCode code() const noexcept { return code_; }

 private:
  LibraryErrorCode code_;
};

}  // namespace engine
