// SPDX-License-Identifier: Apache-2.0

// Document properties: base URL, document information, facts about the document.

#include <iterator>
#include <string>

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/base/EngineError.h"
#include "engine/base/Text.h"
#include "pdflib/LibraryInformationKeys.h"

using engine::Call;
using engine::Document;
using engine::EngineError;
using engine::Guarded;
using engine::SaveMode;
using engine::Utf8FromWide;
using engine::WideFromUtf8;

namespace {

// The document information dictionary's own keys (ISO 32000-1, table 317); the index is the LibraryInformationKey.
constexpr const char* kInformationKeys[] = {nullptr,   "Author",   "Title",        "Subject", "Keywords",
                                            "Creator", "Producer", "CreationDate", "ModDate"};

const char* NameOf(SaveMode mode) {
  switch (mode) {
    case SaveMode::kUnchanged:
      return "unchanged";
    case SaveMode::kIncremental:
      return "incremental";
    case SaveMode::kRewrite:
      break;
  }
  return "rewrite";
}

std::string InformationKey(int key) {
  if (key < 1 || key >= static_cast<int>(std::size(kInformationKeys))) {
    throw EngineError(kErrorBadArgument, "unknown information key");
  }
  return kInformationKeys[key];
}

std::string Fact(Document& document, int key) {
  switch (key) {
    case kInformationWayOfSaving:
      return NameOf(document.Plan().mode);
    case kInformationWhyRewrite:
      return document.Plan().reason;
    case kInformationSignatures:
      return std::to_string(document.Signatures().count);
    case kInformationCertification: {
      const int level = document.Signatures().certificationLevel;
      return level > 0 ? std::to_string(level) : std::string();
    }
    case kInformationLastWay:
      return document.LastSaved() ? NameOf(*document.LastSaved()) : "";
    default:
      return document.Information(InformationKey(key));
  }
}

std::string CustomKey(std::wstring_view key) {
  std::string name = Utf8FromWide(key);
  if (name.empty() || name.find('\0') != std::string::npos) {
    throw EngineError(kErrorBadArgument, "an information key is a text without NUL");
  }
  return name;
}

}  // namespace

int HPLSetBaseURL(int instance, void* url) {
  return Guarded<int>(instance, {url}, [&](Call& call) {
    call.Selected().SetBaseUrl(engine::UrlFromWide(call.Text(url)));
    return 1;
  });
}

wchar_t* HPLGetBaseURL(int instance) {
  return Guarded<wchar_t*>(instance, [](Call& call) { return engine::WideFromUrl(call.Selected().BaseUrl()); });
}

wchar_t* HPLGetInformation(int instance, int key) {
  return Guarded<wchar_t*>(instance, [&](Call& call) { return WideFromUtf8(Fact(call.Selected(), key)); });
}

int HPLSetInformation(int instance, int key, void* value) {
  return Guarded<int>(instance, {value}, [&](Call& call) {
    call.Selected().SetInformation(InformationKey(key), Utf8FromWide(call.Text(value)));
    return 1;
  });
}

wchar_t* HPLGetCustomInformation(int instance, void* key) {
  return Guarded<wchar_t*>(instance, {key}, [&](Call& call) {
    return WideFromUtf8(call.Selected().Information(CustomKey(call.Text(key))));
  });
}

int HPLSetCustomInformation(int instance, void* key, void* value) {
  return Guarded<int>(instance, {key, value}, [&](Call& call) {
    call.Selected().SetInformation(CustomKey(call.Text(key)), Utf8FromWide(call.Text(value)));
    return 1;
  });
}
