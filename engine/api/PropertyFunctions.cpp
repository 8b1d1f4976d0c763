// SPDX-License-Identifier: Apache-2.0

// Document properties: base URL, document information, facts about the document.

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <string>

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/base/EngineError.h"
#include "engine/base/Text.h"
#include "engine/syntax/LiteralString.h"
#include "engine/syntax/TextString.h"
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

// One character for each byte.
std::wstring WideFromBytes(const std::string& bytes) {
  std::wstring text(bytes.size(), L'\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(), [](char byte) { return static_cast<unsigned char>(byte); });
  return text;
}

std::string Fact(Document& document, int key) {
  switch (key) {
    case kInformationSaveMode:
      return NameOf(document.Plan().mode);
    case kInformationWhyRewrite:
      return document.Plan().reason;
    case kInformationSignatures:
      return std::to_string(document.Signatures().count);
    case kInformationCertification: {
      const int level = document.Signatures().certificationLevel;
      return level > 0 ? std::to_string(level) : std::string();
    }
    case kInformationLastSaveMode:
      return document.LastSaved() ? NameOf(*document.LastSaved()) : "";
    case kInformationHasBaseUrl:
      return document.HasBaseUrl() ? "1" : "0";
    case kInformationPdfVersion:
      return document.PdfVersion();
    case kInformationWarnings:
      return document.Warnings();
    default:
      return document.Information(InformationKey(key));
  }
}

// Without Guarded(), which would end the error.
wchar_t* WhyFailed(int instance) noexcept {
  engine::Instance* const found = engine::FindInstance(instance);
  try {
    return found != nullptr ? found->Keep(engine::WideFromUtf8(found->WhyFailed())) : nullptr;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// The values of /PageMode and /PageLayout (ISO 32000-1, table 28); the index is what is returned.
constexpr const char* kPageModes[] = {"UseNone", "UseOutlines", "UseThumbs", "FullScreen", "UseOC", "UseAttachments"};
constexpr const char* kPageLayouts[] = {"SinglePage",     "OneColumn",   "TwoColumnLeft",
                                        "TwoColumnRight", "TwoPageLeft", "TwoPageRight"};

// 0, the standard value, for a name that is not in the table.
template <std::size_t N>
int IndexOf(const char* const (&names)[N], const std::string& name) {
  const auto* const found = std::find(std::begin(names), std::end(names), name);
  return found != std::end(names) ? static_cast<int>(found - std::begin(names)) : 0;
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
  return Guarded<wchar_t*>(instance, [](Call& call) { return engine::WideFromUrlString(call.Selected().BaseUrl()); });
}

wchar_t* HPLGetInformation(int instance, int key) {
  if (key == kInformationWhyFailed) return WhyFailed(instance);
  return Guarded<wchar_t*>(instance, [&](Call& call) {
    Document& document = call.Selected();
    if (key == kInformationBaseUrlBytes) return WideFromBytes(document.BaseUrl());
    if (key <= kInformationActionUriBytes) return WideFromUtf8(Fact(document, key));
    return WideFromBytes(document.Links().ActionUri(key - kInformationActionUriBytes));
  });
}

int HPLSetInformation(int instance, int key, void* value) {
  return Guarded<int>(instance, {value}, [&](Call& call) {
    const std::string text = Utf8FromWide(call.Text(value));
    if (key == kInformationWarnings) {
      call.Selected().SetWarnings(text);
    } else {
      call.Selected().SetInformation(InformationKey(key), text);
    }
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

int HPLEncryptionAlgorithm(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Encryption().algorithm; });
}

int HPLEncryptionStrength(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Encryption().bits; });
}

int HPLIsTaggedPDF(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Links().Tagged() ? 1 : 0; });
}

wchar_t* HPLGetDocumentIdentifier(int instance, int part, int format) {
  return Guarded<wchar_t*>(instance, [&](Call& call) {
    if (format != 0) throw EngineError(kErrorBadArgument, "unknown format of an identifier");
    const std::string digits = engine::HexString(call.Selected().Identifier(part));
    return WideFromUtf8(digits.substr(1, digits.size() - 2));
  });
}

int HPLEmbeddedFileCount(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Links().EmbeddedFileCount(); });
}

int HPLGetPageMode(int instance) {
  return Guarded<int>(instance,
                      [](Call& call) { return IndexOf(kPageModes, call.Selected().Links().CatalogName("/PageMode")); });
}

int HPLGetPageLayout(int instance) {
  return Guarded<int>(
      instance, [](Call& call) { return IndexOf(kPageLayouts, call.Selected().Links().CatalogName("/PageLayout")); });
}
