// SPDX-License-Identifier: Apache-2.0
#include "engine/save/FileIdentifier.h"

#include <cstdint>
#include <cstdio>

#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// FNV-1a with a last round of mixing. It makes versions of a file differ; it is not a protection.
class Digest {
 public:
  explicit Digest(std::uint64_t seed) : state_(0xcbf29ce484222325u ^ seed) {}

  void Add(const std::string& bytes) {
    for (const char c : bytes) state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    state_ = (state_ ^ bytes.size()) * 0x9e3779b97f4a7c15u;
  }

  std::string Hex() const {
    std::uint64_t value = state_;
    value = (value ^ (value >> 33)) * 0xff51afd7ed558ccdu;
    value = (value ^ (value >> 33)) * 0xc4ceb9fe1a85ec53u;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llX", static_cast<unsigned long long>(value ^ (value >> 33)));
    return digits;
  }

 private:
  std::uint64_t state_;
};

std::string DigestOf(const std::string& identifier, const std::vector<ChangedObject>& changes, std::uint64_t seed) {
  Digest digest(seed);
  digest.Add(identifier);
  for (const ChangedObject& change : changes) {
    digest.Add(std::to_string(change.id.number));
    digest.Add(change.body);
  }
  return digest.Hex();
}

bool IsString(const PdfLexer::Value& value) {
  return value.kind == PdfLexer::Kind::kString || value.kind == PdfLexer::Kind::kHexString;
}

}  // namespace

std::string UpdatedIdentifier(const std::string& identifier, const std::vector<ChangedObject>& changes) {
  if (identifier.empty() || identifier.front() != '[') return identifier;
  try {
    PdfLexer lexer(identifier, 1);
    const PdfLexer::Value first = lexer.ReadValue();
    if (!IsString(first) || !IsString(lexer.ReadValue())) return identifier;
    return '[' + std::string(lexer.Text(first)) + '<' + DigestOf(identifier, changes, 0) +
           DigestOf(identifier, changes, 0x6a09e667f3bcc908u) + ">]";
  } catch (const PdfSyntaxError&) {
    return identifier;
  }
}

}  // namespace engine
