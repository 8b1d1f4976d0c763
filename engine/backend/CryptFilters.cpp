// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/CryptFilters.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"

namespace engine {

namespace {

constexpr const char* kKnownMethods[] = {"/V2", "/AESV2", "/AESV3"};
constexpr char kNone[] = "/None";
constexpr char kNothing[] = "null ";  // as long as the name in its place
static_assert(sizeof kNone == sizeof kNothing);

bool HasCryptFilters(QPDFObjectHandle encrypt) {
  constexpr int kFirstWithCryptFilters = 4;
  QPDFObjectHandle version = encrypt.getKey("/V");
  return version.isInteger() && version.getIntValueAsInt() >= kFirstWithCryptFilters;
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

}  // namespace

std::vector<BackendInputSource::Edit> EditsOfCryptFilters(QPDF& document, const InputFile& file) {
  std::vector<BackendInputSource::Edit> edits;
  QPDFObjectHandle encrypt = document.getTrailer().getKey("/Encrypt");
  if (!document.isEncrypted() || !encrypt.isDictionary() || !HasCryptFilters(encrypt)) return edits;
  for (const char* const use : {"/StmF", "/StrF"}) {
    QPDFObjectHandle method = MethodOf(encrypt, use);
    if (!method.isName()) continue;
    const std::string name = method.getName();
    if (name == kNone) {
      const qpdf_offset_t offset = method.getParsedOffset();
      if (offset < 0 || file.ReadAt(static_cast<std::uint64_t>(offset), name.size()) != name) {
        throw EngineError(kErrorUnsupportedSecurity, "a crypt filter's method is written in an odd way");
      }
      edits.push_back({offset, kNothing});
    } else if (std::find(std::begin(kKnownMethods), std::end(kKnownMethods), name) == std::end(kKnownMethods)) {
      throw EngineError(kErrorUnsupportedSecurity, "unknown encryption method " + name);
    }
  }
  return edits;
}

}  // namespace engine
