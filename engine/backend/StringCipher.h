// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <qpdf/QPDF.hh>
#include <string>

#include "engine/syntax/ObjectId.h"

namespace engine {

// How the parser says that a document is encrypted.
struct EncryptionOf {
  int version = 0;   // /V
  int revision = 0;  // /R
  QPDF::encryption_method_e streams = QPDF::e_none;
  QPDF::encryption_method_e strings = QPDF::e_none;

  // No value for a document that is not encrypted.
  static std::optional<EncryptionOf> Document(QPDF& document);
};

// Encrypts and decrypts the strings of one object of a document with the document's own key (ISO 32000-1, 7.6.2; ISO
// 32000-2, 7.6.3).
class StringCipher {
 public:
  // Of a document that leaves its strings in the clear, or all of itself, the cipher changes nothing. Throws
  // EngineError kErrorUnsupportedSecurity when the strings are encrypted in a way that is not known.
  static StringCipher For(QPDF& document, ObjectId object);

  bool Encrypts() const { return method_ != Method::kNone; }
  std::string Encrypt(const std::string& bytes) const;
  // No value for bytes that are not encrypted in this way.
  std::optional<std::string> Decrypt(const std::string& bytes) const;

 private:
  enum class Method { kNone, kRc4, kAes };

  StringCipher(Method method, std::string key) : method_(method), key_(std::move(key)) {}

  Method method_;
  std::string key_;
};

}  // namespace engine
