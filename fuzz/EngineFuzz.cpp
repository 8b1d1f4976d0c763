// SPDX-License-Identifier: Apache-2.0
// Random calls of the exported functions on one document, with the full parser linked in, compared with a model of what
// the document holds: whatever is loaded is saved or refused with an error code; what is saved opens, holds what was
// set and is still encrypted. The calls are taken from the last bytes of the input.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

#include "engine/api/Exports.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"

namespace {

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

  // The loaded document takes the place of the one before.
  bool Load(const std::string& bytes) {
    if (HPLDocumentCount(id_) > 0) HPLRemoveDocument(id_, HPLSelectedDocument(id_));
    void* const buffer = Buffer(bytes.data(), bytes.size());
    const bool loaded = HPLLoadFromString(id_, buffer, nullptr) == 1;
    CheckOutcome(loaded);
    HPLReleaseBuffer(id_, buffer);
    return loaded;
  }
  // Empty when the document cannot be saved.
  std::string Save() {
    const char* const bytes = HPLSaveToString(id_);
    if (!CheckOutcome(bytes != nullptr)) return {};
    return {bytes, static_cast<std::size_t>(HPLAnsiStringResultLength(id_))};
  }
  // Key 0 is the base URL.
  bool Set(int key, const std::wstring& value) {
    return CheckOutcome((key == 0 ? HPLSetBaseURL(id_, Buffer(value)) : HPLSetInformation(id_, key, Buffer(value))) ==
                        1);
  }
  std::wstring Get(int key) {
    const wchar_t* const text = key == 0 ? HPLGetBaseURL(id_) : HPLGetInformation(id_, key);
    if (!CheckOutcome(text != nullptr)) return {};
    return {text, static_cast<std::size_t>(HPLStringResultLength(id_))};
  }
  bool Failed() const { return HPLLastErrorCode(id_) != kErrorNone; }
  bool Damaged() const { return HPLLastErrorCode(id_) == kErrorDamaged; }
  int Encrypted() const { return HPLEncryptionStatus(id_); }
  // What else a host may ask for: any result or error, but no crash.
  void AskAll() {
    const int pages = HPLPageCount(id_);
    CheckOutcome(!Failed());
    if (HPLSelectPage(id_, pages) == 1) {
      HPLPageWidth(id_);
      HPLPageRotation(id_);
    }
    HPLIsLinearized(id_);
    HPLGetDocumentRepaired(id_);
    HPLCheckPassword(id_, Buffer(L"password"));
    for (const int key : {kInformationWhyRewrite, kInformationSignatures, kInformationCertification}) Get(key);
  }

 private:
  void* Buffer(const void* bytes, std::size_t size) {
    void* const buffer = HPLCreateBuffer(id_, static_cast<int>(size));
    HPLAddToBuffer(id_, buffer, bytes, static_cast<int>(size));
    return buffer;
  }
  void* Buffer(const std::wstring& text) { return Buffer(text.data(), text.size() * sizeof(wchar_t)); }
  // A failure has an error code, and one that a user can do something about.
  bool CheckOutcome(bool done) const {
    const int error = HPLLastErrorCode(id_);
    Require(done == (error == kErrorNone), "a failure has an error code, and only a failure");
    Require(error != kErrorInternal && error != kErrorBadBuffer && error != kErrorBadArgument,
            "the error does not blame the caller");
    return done;
  }

  const int id_;
};

// One document, and what it should hold: the values that were set since it was loaded.
class Session {
 public:
  // Whether the document could be loaded.
  bool Load(const std::string& bytes) {
    source_ = bytes;
    set_.clear();
    return library_.Load(bytes);
  }

  // False when the document is of no more use.
  bool Step(unsigned char choice) {
    static const std::wstring kValues[] = {L"", L"http://example.net/(\\)", L"\x20AC (title", L"plain"};
    const int key = choice >> 2 & 1 ? kInformationTitle : 0;
    switch (choice % 16) {
      case 12:
        library_.AskAll();
        return true;
      case 13:
        return Load(source_);
      case 14:
        CheckSaved();
        return true;
      case 15:
        // As a save onto the loaded file.
        saved_ = CheckSaved();
        return saved_.empty() || Load(saved_);
      default:
        Set(key, kValues[choice & 3]);
        CheckValues(library_, false);
        return true;
    }
  }

 private:
  void Set(int key, const std::wstring& value) {
    if (!library_.Set(key, value)) return;
    set_[key] = key == 0 && !value.empty() && value[0] == L'\x20AC' ? L"%E2%82%AC (title" : value;
  }

  void CheckValues(Library& library, bool mayBeDamaged) {
    for (const auto& [key, value] : set_) {
      const bool kept = library.Get(key) == value;
      Require(kept || (mayBeDamaged && library.Damaged()), "what was set is kept");
    }
  }

  // The saved file; empty when the document cannot be saved.
  std::string CheckSaved() {
    const std::wstring planned = library_.Get(kInformationSaveMode);
    const std::wstring url = library_.Get(0);
    const bool encrypted = library_.Encrypted() != 0;
    std::string saved = library_.Save();
    if (saved.empty()) return saved;
    const std::wstring mode = library_.Get(kInformationLastSaveMode);
    Require(mode == planned || (planned == L"incremental" && mode == L"rewrite"), "the document is saved as planned");
    if (mode != L"rewrite") Require(saved.compare(0, source_.size(), source_) == 0, "the source is a prefix");
    CheckValues(library_, false);

    // What a repair makes of garbage may look to the guards like a hostile file.
    const bool guarded = mode == L"rewrite";
    Library other;
    if (!other.Load(saved)) {
      Require(guarded && other.Damaged(), "what was saved opens");
      return {};
    }
    Require(other.Get(0) == url, "the base URL is kept");
    CheckValues(other, guarded);
    Require((other.Encrypted() != 0) == encrypted, "the encryption is kept");
    return saved;
  }

  Library library_;
  std::string source_;
  std::string saved_;
  std::map<int, std::wstring> set_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  constexpr std::size_t kSteps = 12;
  Session session;
  if (!session.Load({reinterpret_cast<const char*>(data), size})) return 0;
  if (!session.Step(1) || !session.Step(14)) return 0;
  for (std::size_t i = size > kSteps ? size - kSteps : 0; i < size; ++i) {
    if (!session.Step(data[i])) return 0;
  }
  return 0;
}
