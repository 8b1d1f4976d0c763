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

// Runs the cipher that fits the key over the bytes after the initialisation vector.
template <typename Cipher>
void RunAes(const std::string& key, std::string& bytes, Cipher cipher) {
  std::string vector = bytes.substr(0, AES_BLOCK_SIZE);
  std::uint8_t* const body = Bytes(bytes) + AES_BLOCK_SIZE;
  cipher(Bytes(key), key.size() == AES256_KEY_SIZE, Bytes(vector), bytes.size() - AES_BLOCK_SIZE, body);
}

template <typename Context, typename SetKey, typename Run, typename Chain>
void RunCbc(const std::uint8_t* key, SetKey setKey, Run run, Chain chain, std::uint8_t* vector, std::size_t size,
            std::uint8_t* body) {
  Context context;
  setKey(&context, key);
  chain(&context, reinterpret_cast<nettle_cipher_func*>(run), AES_BLOCK_SIZE, vector, size, body, body);
}

// The initialisation vector, then the bytes padded to full blocks, at least one byte of padding.
std::string EncryptAes(const std::string& key, const std::string& bytes) {
  std::string vector(AES_BLOCK_SIZE, '\0');
  if (getrandom(vector.data(), vector.size(), 0) != static_cast<ssize_t>(vector.size())) {
    throw EngineError(kErrorInternal, "no random numbers");
  }
  const std::size_t padding = AES_BLOCK_SIZE - bytes.size() % AES_BLOCK_SIZE;
  std::string result = vector + bytes + std::string(padding, static_cast<char>(padding));
  RunAes(key, result, [](const auto* bytesOfKey, bool wide, auto* iv, std::size_t size, auto* body) {
    if (wide) {
      RunCbc<aes256_ctx>(bytesOfKey, aes256_set_encrypt_key, aes256_encrypt, cbc_encrypt, iv, size, body);
    } else {
      RunCbc<aes128_ctx>(bytesOfKey, aes128_set_encrypt_key, aes128_encrypt, cbc_encrypt, iv, size, body);
    }
  });
  return result;
}

std::optional<std::string> DecryptAes(const std::string& key, std::string bytes) {
  if (bytes.size() < 2 * AES_BLOCK_SIZE || bytes.size() % AES_BLOCK_SIZE != 0) return std::nullopt;
  RunAes(key, bytes, [](const auto* bytesOfKey, bool wide, auto* iv, std::size_t size, auto* body) {
    if (wide) {
      RunCbc<aes256_ctx>(bytesOfKey, aes256_set_decrypt_key, aes256_decrypt, cbc_decrypt, iv, size, body);
    } else {
      RunCbc<aes128_ctx>(bytesOfKey, aes128_set_decrypt_key, aes128_decrypt, cbc_decrypt, iv, size, body);
    }
  });
  const auto padding = static_cast<unsigned char>(bytes.back());
  if (padding == 0 || padding > AES_BLOCK_SIZE) return std::nullopt;
  return bytes.substr(AES_BLOCK_SIZE, bytes.size() - AES_BLOCK_SIZE - padding);
}

}  // namespace

std::optional<EncryptionOf> EncryptionOf::Document(QPDF& document) {
  EncryptionOf result;
  int permissions = 0;
  QPDF::encryption_method_e files = QPDF::e_none;
  if (!document.isEncrypted(result.revision, permissions, result.version, result.streams, result.strings, files)) {
    return std::nullopt;
  }
  return result;
}

StringCipher StringCipher::For(QPDF& document, ObjectId object) {
  const std::optional<EncryptionOf> encryption = EncryptionOf::Document(document);
  if (!encryption) return StringCipher(Method::kNone, "");
  const int version = encryption->version;
  constexpr int kFirstWithCryptFilters = 4;
  const QPDF::encryption_method_e strings = version < kFirstWithCryptFilters ? QPDF::e_rc4 : encryption->strings;
  if (strings == QPDF::e_none) return StringCipher(Method::kNone, "");
  if (strings == QPDF::e_unknown) throw EngineError(kErrorUnsupportedSecurity, "the strings' encryption is unknown");

  const bool aes = strings != QPDF::e_rc4;
  std::string key = QPDF::compute_data_key(document.getEncryptionKey(), static_cast<int>(object.number),
                                           static_cast<int>(object.generation), aes, version, encryption->revision);
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
      return EncryptAes(key_, bytes);
    case Method::kNone:
      break;
  }
  return bytes;
}

std::optional<std::string> StringCipher::Decrypt(const std::string& bytes) const {
  if (method_ == Method::kAes) return DecryptAes(key_, bytes);
  return Encrypt(bytes);  // RC4 is its own inverse
}

}  // namespace engine
