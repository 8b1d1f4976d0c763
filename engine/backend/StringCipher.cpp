// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/StringCipher.h"

#include <nettle/aes.h>
#include <nettle/arcfour.h>
#include <nettle/cbc.h>
#include <sys/random.h>

#include <algorithm>
#include <cstdint>

#include "engine/base/EngineError.h"

namespace engine {

namespace {

std::uint8_t* Bytes(std::string& text) {
  return reinterpret_cast<std::uint8_t*>(text.data());
}
const std::uint8_t* Bytes(const std::string& text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}

std::string Rc4(const std::string& key, const std::string& bytes) {
  arcfour_ctx context;
  arcfour_set_key(&context, key.size(), Bytes(key));
  std::string result(bytes.size(), '\0');
  arcfour_crypt(&context, result.size(), Bytes(result), Bytes(bytes));
  return result;
}

// The initialisation vector, then the bytes padded to full blocks, at least one byte of padding.
std::string AesCbc(const std::string& key, const std::string& bytes) {
  std::string vector(AES_BLOCK_SIZE, '\0');
  if (getrandom(vector.data(), vector.size(), 0) != static_cast<ssize_t>(vector.size())) {
    throw EngineError(kErrorInternal, "no random numbers");
  }
  const std::size_t padding = AES_BLOCK_SIZE - bytes.size() % AES_BLOCK_SIZE;
  std::string result = vector + bytes + std::string(padding, static_cast<char>(padding));
  std::uint8_t* const body = Bytes(result) + AES_BLOCK_SIZE;
  const std::size_t size = result.size() - AES_BLOCK_SIZE;
  const auto run = [&](auto& context, auto setKey, auto encrypt) {
    setKey(&context, Bytes(key));
    cbc_encrypt(&context, reinterpret_cast<nettle_cipher_func*>(encrypt), AES_BLOCK_SIZE, Bytes(vector), size, body,
                body);
  };
  if (key.size() == AES256_KEY_SIZE) {
    aes256_ctx context;
    run(context, aes256_set_encrypt_key, aes256_encrypt);
  } else {
    aes128_ctx context;
    run(context, aes128_set_encrypt_key, aes128_encrypt);
  }
  return result;
}

}  // namespace

StringCipher StringCipher::For(QPDF& document, ObjectId object) {
  int revision = 0;
  int permissions = 0;
  int version = 0;
  QPDF::encryption_method_e streams = QPDF::e_none;
  QPDF::encryption_method_e strings = QPDF::e_none;
  QPDF::encryption_method_e files = QPDF::e_none;
  if (!document.isEncrypted(revision, permissions, version, streams, strings, files)) {
    return StringCipher(Method::kNone, "");
  }
  constexpr int kFirstWithCryptFilters = 4;
  if (version < kFirstWithCryptFilters) strings = QPDF::e_rc4;
  if (strings == QPDF::e_none) return StringCipher(Method::kNone, "");
  if (strings == QPDF::e_unknown) throw EngineError(kErrorUnsupportedSecurity, "the strings' encryption is unknown");

  const bool aes = strings != QPDF::e_rc4;
  std::string key = QPDF::compute_data_key(document.getEncryptionKey(), static_cast<int>(object.number),
                                           static_cast<int>(object.generation), aes, version, revision);
  if (aes && key.size() != AES128_KEY_SIZE && key.size() != AES256_KEY_SIZE) {
    throw EngineError(kErrorUnsupportedSecurity, "the file's key is none of AES");
  }
  return StringCipher(aes ? Method::kAes : Method::kRc4, std::move(key));
}

std::string StringCipher::Encrypt(const std::string& bytes) const {
  switch (method_) {
    case Method::kRc4:
      return Rc4(key_, bytes);
    case Method::kAes:
      return AesCbc(key_, bytes);
    case Method::kNone:
      break;
  }
  return bytes;
}

}  // namespace engine
