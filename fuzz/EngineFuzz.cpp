// SPDX-License-Identifier: Apache-2.0
// Load, set, save, load again through the exported functions, with the full parser behind them: whatever is loaded is
// saved or refused with a reason, and what is saved opens, holds what was set and is still encrypted.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "engine/api/Exports.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"

namespace {

constexpr wchar_t kUrl[] = L"http://example.net/(\\)";
constexpr wchar_t kTitle[] = L"\x20AC (title";

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "violated: %s\n", what);
  std::abort();
}

// An instance of the library with its calling rules.
class Library {
 public:
  Library() : id_(HPLCreateLibrary()) { Require(id_ > 0, "an instance is created"); }
  ~Library() { HPLReleaseLibrary(id_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  bool Load(const std::string& bytes) {
    void* const buffer = Buffer(bytes.data(), bytes.size());
    const bool loaded = HPLLoadFromString(id_, buffer, nullptr) == 1;
    CheckOutcome(loaded);
    HPLReleaseBuffer(id_, buffer);
    return loaded;
  }
  // Empty when the document cannot be saved.
  std::string Save() {
    const char* const bytes = HPLSaveToString(id_);
    CheckOutcome(bytes != nullptr);
    if (bytes == nullptr) return {};
    return {bytes, static_cast<std::size_t>(HPLAnsiStringResultLength(id_))};
  }
  bool SetBaseUrl(const std::wstring& url) { return CheckOutcome(HPLSetBaseURL(id_, Buffer(url)) == 1); }
  bool SetTitle(const std::wstring& title) {
    return CheckOutcome(HPLSetInformation(id_, kInformationTitle, Buffer(title)) == 1);
  }
  std::wstring BaseUrl() { return Text(HPLGetBaseURL(id_)); }
  std::wstring Information(int key) { return Text(HPLGetInformation(id_, key)); }
  bool Damaged() const { return HPLLastErrorCode(id_) == kErrorDamaged; }
  int Encrypted() const { return HPLEncryptionStatus(id_); }
  // What else a host may ask for; any answer or error, but no crash.
  void AskAll() {
    const int pages = HPLPageCount(id_);
    CheckOutcome(HPLLastErrorCode(id_) == kErrorNone);
    if (HPLSelectPage(id_, pages) == 1) {
      HPLPageWidth(id_);
      HPLPageRotation(id_);
    }
    HPLIsLinearized(id_);
    HPLGetDocumentRepaired(id_);
    HPLCheckPassword(id_, Buffer(L"password"));
    for (const int key : {kInformationWhyRewrite, kInformationSignatures, kInformationCertification}) Information(key);
  }

 private:
  void* Buffer(const void* bytes, std::size_t size) {
    void* const buffer = HPLCreateBuffer(id_, static_cast<int>(size));
    HPLAddToBuffer(id_, buffer, bytes, static_cast<int>(size));
    return buffer;
  }
  void* Buffer(const std::wstring& text) { return Buffer(text.data(), text.size() * sizeof(wchar_t)); }
  std::wstring Text(const wchar_t* text) {
    CheckOutcome(text != nullptr);
    if (text == nullptr) return {};
    return {text, static_cast<std::size_t>(HPLStringResultLength(id_))};
  }
  // A failure has a reason, and one that a user can do something with.
  bool CheckOutcome(bool done) const {
    const int error = HPLLastErrorCode(id_);
    Require(done == (error == kErrorNone), "a failure has an error code, and only a failure");
    Require(error != kErrorInternal && error != kErrorBadBuffer && error != kErrorBadArgument, "the error is a reason");
    return done;
  }

  const int id_;
};

void CheckSaved(Library& library, const std::string& source, const wchar_t* title) {
  const std::wstring planned = library.Information(kInformationWayOfSaving);
  const int encrypted = library.Encrypted();
  const std::wstring url = library.BaseUrl();
  const std::string saved = library.Save();
  if (saved.empty()) return;
  const std::wstring way = library.Information(kInformationLastWay);
  Require(way == planned || (planned == L"incremental" && way == L"rewrite"), "the document is saved as planned");
  if (way != L"rewrite") Require(saved.compare(0, source.size(), source) == 0, "the source is a prefix");

  Library other;
  // What a repair makes of garbage may look to the guards like a hostile file.
  const bool guarded = way == L"rewrite";
  if (!other.Load(saved)) return Require(guarded && other.Damaged(), "what was saved opens");
  Require(other.BaseUrl() == url, "the base URL is kept");
  const bool kept = title == nullptr || other.Information(kInformationTitle) == title;
  if (!kept) return Require(guarded && other.Damaged(), "the title is kept");
  Require((other.Encrypted() != 0) == (encrypted != 0), "the encryption is kept");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string source(reinterpret_cast<const char*>(data), size);
  Library library;
  if (!library.Load(source)) return 0;
  if (!library.SetBaseUrl(kUrl)) return 0;
  CheckSaved(library, source, nullptr);
  if (library.SetTitle(kTitle)) CheckSaved(library, source, kTitle);
  library.AskAll();
  if (library.SetBaseUrl(L"")) CheckSaved(library, source, nullptr);
  return 0;
}
