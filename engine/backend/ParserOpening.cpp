// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/ParserOpening.h"

#include <algorithm>
#include <new>
#include <optional>
#include <qpdf/QUtil.hh>
#include <utility>

#include "engine/backend/CryptFilters.h"
#include "engine/quick/QuickReader.h"

namespace engine {

namespace {

using View = BackendInputSource::View;

void Process(QPDF& document, const View& view, const std::string& password, Recovery recovery) {
  document.setSuppressWarnings(true);
  document.setAttemptRecovery(recovery == Recovery::kOn);
  document.processInputSource(std::make_shared<BackendInputSource>(view), password.c_str());
}

// Whether the password fits. Throws what the parser throws.
bool PasswordFits(QPDF& document, const View& view, const std::string& password, Recovery recovery) {
  try {
    Process(document, view, password, recovery);
    return true;
  } catch (const QPDFExc& error) {
    if (error.getErrorCode() == qpdf_e_password) return false;
    for (const QPDFExc& warning : document.getWarnings()) {
      if (IsAboutLackOfMemory(warning.getMessageDetail())) throw std::bad_alloc();
    }
    throw;
  }
}

// The number after the last "startxref"; empty when there is none.
std::string StartXref(const View& view) {
  constexpr std::uint64_t kWindow = 1054;  // as far from the end as the parser looks
  const std::uint64_t window = std::min(view.End(), kWindow);
  const std::string end = view.file->ReadAt(view.End() - window, window) + view.appended;
  const std::string word = "startxref";
  const std::size_t at = end.rfind(word);
  if (at == std::string::npos) return {};
  const std::size_t digits = end.find_first_of("0123456789", at + word.size());
  if (digits == std::string::npos) return {};
  return end.substr(digits, end.find_first_not_of("0123456789", digits) - digits);
}

// The view with an empty update whose trailer has another encryption dictionary; no value when there is nothing to
// continue.
std::optional<View> WithEncryption(const View& view, QPDF& document, const std::string& encryption,
                                   std::uint64_t headerOffset) {
  const std::string previous = StartXref(view);
  if (previous.empty()) return std::nullopt;
  View changed = view;
  changed.appended += '\n';
  const std::uint64_t start = changed.End() + changed.appended.size() - headerOffset;
  QPDFObjectHandle trailer = document.getTrailer();
  changed.appended += "xref\n0 0\ntrailer\n<< /Encrypt " + encryption + " /Prev " + previous;
  for (const char* const key : {"/Size", "/Root", "/Info", "/ID"}) {
    if (trailer.hasKey(key)) changed.appended += ' ' + std::string(key) + ' ' + trailer.getKey(key).unparse();
  }
  changed.appended += " >>\nstartxref\n" + std::to_string(start) + "\n%%EOF\n";
  return changed;
}

}  // namespace

bool IsAboutLackOfMemory(const std::string& message) {
  static const std::string exception = std::bad_alloc().what();
  return message.find(exception) != std::string::npos;
}

std::shared_ptr<QPDF> OpenParser(View& view, const std::string& password, Recovery recovery) {
  std::shared_ptr<QPDF> document = QPDF::create();
  const bool fits = PasswordFits(*document, view, password, recovery);
  const std::optional<std::string> encryption =
      fits ? EncryptionWithoutNone(*document) : EncryptionWithKeyLength(*document);
  if (!encryption) return fits ? document : nullptr;
  std::optional<View> changed = WithEncryption(view, *document, *encryption, QuickReader::HeaderOffset(*view.file));
  if (!changed) return nullptr;
  document = QPDF::create();
  if (!PasswordFits(*document, *changed, password, recovery)) return nullptr;
  view = std::move(*changed);
  return document;
}

std::vector<std::string> PasswordEncodings(const std::string& password) {
  std::vector<std::string> encodings = {password};
  for (std::string& other : QUtil::possible_repaired_encodings(password)) {
    if (std::find(encodings.begin(), encodings.end(), other) == encodings.end()) encodings.push_back(std::move(other));
  }
  return encodings;
}

}  // namespace engine
