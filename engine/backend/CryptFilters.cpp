// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/CryptFilters.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <qpdf/QPDFXRefEntry.hh>

#include "engine/backend/PageSearch.h"
#include "engine/backend/XrefEntry.h"
#include "engine/base/EngineError.h"
#include "engine/quick/PdfFileText.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

constexpr const char* kKnownMethods[] = {"/V2", "/AESV2", "/AESV3"};
constexpr char kNone[] = "/None";
constexpr int kFirstWithCryptFilters = 4;
constexpr int kStandardLength = 40;  // of a key in bits
constexpr int kLongestKey = 256;

int IntegerOr(QPDFObjectHandle dictionary, const char* key, int standard) {
  QPDFObjectHandle value = dictionary.getKey(key);
  return value.isInteger() ? value.getIntValueAsInt() : standard;
}

// The method of the filter that `use` (/StmF or /StrF) names; null for none.
QPDFObjectHandle MethodOf(QPDFObjectHandle encrypt, const char* use) {
  QPDFObjectHandle name = encrypt.getKey(use);
  if (!name.isName()) return QPDFObjectHandle::newNull();
  QPDFObjectHandle filters = encrypt.getKey("/CF");
  QPDFObjectHandle filter = filters.isDictionary() ? filters.getKey(name.getName()) : QPDFObjectHandle::newNull();
  if (filter.isDictionary()) return filter.getKey("/CFM");
  if (name.isNameAndEquals("/Identity")) return QPDFObjectHandle::newNull();
  throw EngineError(kErrorUnsupportedSecurity, "no crypt filter " + name.getName());
}

// The key's length in bits where every string and stream has the same RC4 filter; otherwise 0.
int LengthOfOneRc4Filter(QPDFObjectHandle encrypt) {
  QPDFObjectHandle streams = encrypt.getKey("/StmF");
  QPDFObjectHandle strings = encrypt.getKey("/StrF");
  QPDFObjectHandle metadata = encrypt.getKey("/EncryptMetadata");
  if (!streams.isName() || !strings.isName() || streams.getName() != strings.getName()) return 0;
  if (metadata.isBool() && !metadata.getBoolValue()) return 0;
  if (!MethodOf(encrypt, "/StmF").isNameAndEquals("/V2")) return 0;
  constexpr int kLongestInBytes = 32;
  const int length = IntegerOr(encrypt.getKey("/CF").getKey(streams.getName()), "/Length", 0);
  if (length == 0) return IntegerOr(encrypt, "/Length", 0);
  return length > kLongestInBytes ? length : 8 * length;
}

// The crypt filters that the encryption dictionary defines.
std::map<std::string, QPDFObjectHandle> FiltersOf(QPDFObjectHandle encrypt) {
  QPDFObjectHandle filters = encrypt.isDictionary() ? encrypt.getKey("/CF") : encrypt;
  return filters.isDictionary() ? filters.getDictAsMap() : std::map<std::string, QPDFObjectHandle>();
}

// Whether the encryption dictionary is plain syntax. The parser passes over what is none, such as other bytes between
// hexadecimal digits.
bool IsPlainObject(QPDF& document, QPDFObjGen id, const PdfFileText& file) {
  const std::map<QPDFObjGen, QPDFXRefEntry> entries = document.getXRefTable();
  const auto entry = entries.find(id);
  if (entry == entries.end() || entry->second.getType() != kInFile) return false;
  try {
    file.ReadObject(static_cast<std::uint64_t>(entry->second.getOffset()));
    return true;
  } catch (const PdfSyntaxError&) {
    return false;
  }
}

// Whether the key's string has all its bytes; more are padding.
bool IsWholeKey(QPDFObjectHandle encrypt, const char* key) {
  constexpr int kFirstWithLongKeys = 5;
  const std::size_t length = IntegerOr(encrypt, "/R", 0) >= kFirstWithLongKeys ? 48 : 32;
  QPDFObjectHandle value = encrypt.getKey(key);
  return value.isString() && value.getStringValue().size() >= length;
}

}  // namespace

std::optional<std::string> EncryptionWithoutNone(QPDF& document) {
  QPDFObjectHandle encrypt = document.getTrailer().getKey("/Encrypt");
  if (!document.isEncrypted() || !encrypt.isDictionary()) return std::nullopt;
  if (IntegerOr(encrypt, "/V", 0) < kFirstWithCryptFilters) return std::nullopt;
  bool changed = false;
  QPDFObjectHandle copy = encrypt.shallowCopy();
  for (const char* const use : {"/StmF", "/StrF"}) {
    QPDFObjectHandle method = MethodOf(encrypt, use);
    if (!method.isName()) continue;
    const std::string name = method.getName();
    if (name == kNone) {
      copy.replaceKey(use, QPDFObjectHandle::newName("/Identity"));
      changed = true;
    } else if (std::find(std::begin(kKnownMethods), std::end(kKnownMethods), name) == std::end(kKnownMethods)) {
      throw EngineError(kErrorUnsupportedSecurity, "unknown encryption method " + name);
    }
  }
  if (!changed) return std::nullopt;
  // Readers that know this method go by the length.
  const int length = IntegerOr(encrypt, "/Length", kStandardLength);
  if (length < kStandardLength || length > kLongestKey || length % 8 != 0) {
    throw EngineError(kErrorUnsupportedSecurity, "no key has " + std::to_string(length) + " bits");
  }
  return copy.unparse();
}

std::optional<std::string> EncryptionWithKeyLength(QPDF& document) {
  QPDFObjectHandle encrypt = document.getTrailer().getKey("/Encrypt");
  if (!encrypt.isDictionary()) return std::nullopt;
  constexpr int kParsersGuess = 128;
  const int version = IntegerOr(encrypt, "/V", 0);
  int length = 0;
  if (version == 2 || version == 3) length = encrypt.getKey("/Length").isInteger() ? 0 : kStandardLength;
  if (version == kFirstWithCryptFilters) length = LengthOfOneRc4Filter(encrypt);
  if (length < kStandardLength || length >= kParsersGuess || length % 8 != 0) return std::nullopt;
  // What one RC4 filter does to everything is what was there before there were filters.
  QPDFObjectHandle copy = encrypt.shallowCopy();
  for (const char* const key : {"/CF", "/StmF", "/StrF", "/EFF"}) copy.removeKey(key);
  copy.replaceKey("/V", QPDFObjectHandle::newInteger(2));
  copy.replaceKey("/R", QPDFObjectHandle::newInteger(3));
  copy.replaceKey("/Length", QPDFObjectHandle::newInteger(length));
  return copy.unparse();
}

bool EncryptionIsDamaged(QPDF& document, const InputFile& file, std::uint64_t headerOffset) {
  QPDFObjectHandle encrypt = document.getTrailer().getKey("/Encrypt");
  if (!encrypt.isDictionary()) return false;
  if (encrypt.isIndirect() && !IsPlainObject(document, encrypt.getObjGen(), PdfFileText(file, headerOffset)))
    return true;
  QPDFObjectHandle length = encrypt.getKey("/Length");
  if (length.isInteger() && (length.getIntValue() < 0 || length.getIntValue() > kLongestKey)) return true;
  if (HasInventedKeys(encrypt) || HasInventedKeys(encrypt.getKey("/CF"))) return true;
  const std::map<std::string, QPDFObjectHandle> named = FiltersOf(encrypt);
  return std::any_of(named.begin(), named.end(), [](const auto& filter) { return HasInventedKeys(filter.second); });
}

bool KeyLengthIsDamaged(QPDF& document) {
  QPDFObjectHandle encrypt = document.getTrailer().getKey("/Encrypt");
  if (encrypt.isDictionary() && (!IsWholeKey(encrypt, "/O") || !IsWholeKey(encrypt, "/U"))) return true;
  const std::map<std::string, QPDFObjectHandle> named = FiltersOf(encrypt);
  return std::any_of(named.begin(), named.end(), [](const auto& filter) {
    QPDFObjectHandle dictionary = filter.second;
    const int length = dictionary.isDictionary() ? IntegerOr(dictionary, "/Length", 0) : 0;
    const bool bytes = length >= kStandardLength / 8 && length <= kLongestKey / 8;
    const bool bits = length >= kStandardLength && length <= kLongestKey && length % 8 == 0;
    return length != 0 && !bytes && !bits;
  });
}

}  // namespace engine
