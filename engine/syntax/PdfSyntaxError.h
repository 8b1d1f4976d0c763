// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <exception>

namespace engine {

// The text is damaged or unusual PDF. Callers then use the full parser; it does not reach the API.
class PdfSyntaxError : public std::exception {
 public:
  // Whether the text merely ended too early, so that a longer window of the file may do.
  explicit PdfSyntaxError(bool truncated = false) : truncated_(truncated) {}

  bool truncated() const noexcept { return truncated_; }
  const char* what() const noexcept override { return truncated_ ? "text ends early" : "unusual PDF syntax"; }

 private:
  bool truncated_;
};

}  // namespace engine
