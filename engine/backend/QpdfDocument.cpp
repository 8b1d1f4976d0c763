// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/QpdfDocument.h"

#include <algorithm>
#include <exception>
#include <new>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QPDFXRefEntry.hh>
#include <utility>

#include "engine/backend/BackendInputSource.h"
#include "engine/backend/FileRepair.h"
#include "engine/backend/ObjectStreams.h"
#include "engine/backend/ObjectWriter.h"
#include "engine/backend/ParserOpening.h"
#include "engine/backend/SignatureSearch.h"
#include "engine/backend/Soundness.h"
#include "engine/backend/StringCipher.h"
#include "engine/backend/XrefStreamGuard.h"
#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"

namespace engine {

namespace {

// The parser's exceptions as the engine's.
template <typename Body>
auto Translated(Body&& body) {
  try {
    return body();
  } catch (const EngineError&) {
    throw;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const QPDFExc& error) {
    if (TellsOfLackOfMemory(error.what())) throw std::bad_alloc();
    throw EngineError(error.getErrorCode() == qpdf_e_unsupported ? kErrorUnsupportedSecurity : kErrorDamaged,
                      error.what());
  } catch (const std::exception& error) {
    if (TellsOfLackOfMemory(error.what())) throw std::bad_alloc();
    throw EngineError(kErrorDamaged, error.what());
  }
}

// ISO 32000-1, annex H.3, note 13: the header stands within the first 1024 bytes.
bool HasHeader(const InputFile& file) {
  return file.ReadAt(0, 1024).find("%PDF-") != std::string::npos;
}

bool TellsOfRepair(const QPDFExc& warning) {
  return warning.getMessageDetail().find("reconstruct cross-reference table") != std::string::npos;
}

// A repair reads every byte. Of a file with holes that may be any number of them, at no cost to who made it.
bool RepairIsBounded(const InputFile& file) {
  constexpr std::uint64_t kLargestWithHoles = std::uint64_t{1} << 30;
  return !file.Sparse() || file.Size() <= kLargestWithHoles;
}

std::string BaseUrlOf(QPDFObjectHandle catalog) {
  QPDFObjectHandle uri = catalog.getKey("/URI");
  if (!uri.isDictionary()) return {};
  QPDFObjectHandle base = uri.getKey("/Base");
  return base.isString() ? base.getStringValue() : std::string();
}

// A copy of the entry's dictionary, or a new one in place of a missing or broken one.
QPDFObjectHandle DictionaryCopy(QPDFObjectHandle object) {
  return object.isDictionary() ? object.shallowCopy() : QPDFObjectHandle::newDictionary();
}

void SetBaseUrl(QPDFObjectHandle catalog, const std::string& url) {
  QPDFObjectHandle uri = DictionaryCopy(catalog.getKey("/URI"));
  if (url.empty()) {
    uri.removeKey("/Base");
  } else {
    uri.replaceKey("/Base", QPDFObjectHandle::newString(url));
  }
  if (uri.getKeys().empty()) {
    catalog.removeKey("/URI");
  } else {
    catalog.replaceKey("/URI", uri);
  }
}

std::string InformationOf(QPDFObjectHandle information, const std::string& key) {
  if (!information.isDictionary()) return {};
  QPDFObjectHandle value = information.getKey("/" + key);
  return value.isString() ? value.getUTF8Value() : std::string();
}

void SetInformation(QPDFObjectHandle information, const Changes& changes) {
  for (const auto& [key, value] : changes.information) {
    if (value.empty()) {
      information.removeKey("/" + key);
    } else {
      information.replaceKey("/" + key, QPDFObjectHandle::newUnicodeString(value));
    }
  }
}

bool IsIdentifier(QPDFObjectHandle id) {
  return id.isArray() && id.getArrayNItems() == 2 && id.getArrayItem(0).isString() && id.getArrayItem(1).isString();
}

// Gives a dictionary entry another value for a while.
class ScopedEntry {
 public:
  ScopedEntry(QPDFObjectHandle dictionary, std::string key)
      : dictionary_(dictionary), key_(std::move(key)), old_(dictionary_.getKey(key_)) {}
  ~ScopedEntry() { dictionary_.replaceKey(key_, old_); }
  ScopedEntry(const ScopedEntry&) = delete;
  ScopedEntry& operator=(const ScopedEntry&) = delete;

 private:
  QPDFObjectHandle dictionary_;
  std::string key_;
  QPDFObjectHandle old_;
};

// The parser takes an exception out of a pipeline for a broken stream and goes on; this one keeps it.
class OutputPipeline : public Pipeline {
 public:
  explicit OutputPipeline(OutputFile& output) : Pipeline("output", nullptr), output_(output) {}

  void write(unsigned char const* data, std::size_t length) override {
    if (failure_) return;
    try {
      output_.Write(data, length);
    } catch (...) {
      failure_ = std::current_exception();
    }
  }
  void finish() override {}
  void ThrowFailure() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  OutputFile& output_;
  std::exception_ptr failure_;
};

bool SamePlace(const QPDFXRefEntry& one, const QPDFXRefEntry& other) {
  constexpr int kInFile = 1;
  if (one.getType() != other.getType()) return false;
  return one.getType() == kInFile ? one.getOffset() == other.getOffset()
                                  : one.getObjStreamNumber() == other.getObjStreamNumber() &&
                                        one.getObjStreamIndex() == other.getObjStreamIndex();
}

ObjectId IdOf(QPDFObjectHandle object) {
  return {static_cast<std::uint32_t>(object.getObjectID()), static_cast<std::uint32_t>(object.getGeneration())};
}

void SetTrailerEntry(FileTail& tail, const std::string& key, const std::string& value) {
  for (FileTail::Entry& entry : tail.entries) {
    if (entry.key == key) {
      entry.value = value;
      return;
    }
  }
  tail.entries.push_back({key, value});
}

}  // namespace

// A question to the parser; its answer counts only if there was memory for all that it read.
template <typename Body>
auto QpdfDocument::Ask(Body&& body) {
  try {
    auto answer = Translated(body);
    NoteWarnings();
    return answer;
  } catch (const EngineError&) {
    NoteWarnings();
    throw;
  }
}

void QpdfDocument::NoteWarnings() {
  for (const QPDFExc& warning : qpdf_->getWarnings()) {
    repaired_ = repaired_ || TellsOfRepair(warning);
    outOfMemory_ = outOfMemory_ || TellsOfLackOfMemory(warning.getMessageDetail());
  }
  if (outOfMemory_) throw std::bad_alloc();
}

std::unique_ptr<QpdfDocument> QpdfDocument::Open(std::shared_ptr<const InputFile> file, const std::string& password) {
  return OpenFrom(Origin::kOutside, std::move(file), password);
}

std::unique_ptr<QpdfDocument> QpdfDocument::OpenFrom(Origin origin, std::shared_ptr<const InputFile> file,
                                                     const std::string& password) {
  std::unique_ptr<QpdfDocument> document(new QpdfDocument);
  document->file_ = std::move(file);
  const InputFile& source = *document->file_;
  // The parser would search the whole of it for a header.
  if (!RepairIsBounded(source) && !HasHeader(source)) throw EngineError(kErrorNotPdf, "no header");
  try {
    if (origin == Origin::kOutside) {
      document->Load(password);
    } else {
      document->OpenView(password, Recovery::kOff);
    }
    document->Ask([&] { return document->qpdf_->getRoot(); });
  } catch (const EngineError& error) {
    if (error.code() == kErrorDamaged && !HasHeader(source)) throw EngineError(kErrorNotPdf, error.what());
    throw;
  }
  return document;
}

// Opens the document as it is if it is sound, otherwise repaired, otherwise as the parser rebuilds it.
void QpdfDocument::Load(const std::string& password) {
  GuardXrefStreams(*file_);
  FileRepair repair(file_);
  bool opened = false;
  try {
    OpenView(password, Recovery::kOff);
    if (Ask([&] { return IsSound(*qpdf_, *file_, repair); })) return;
    opened = true;
  } catch (const EngineError& error) {
    if (error.code() != kErrorDamaged || !RepairIsBounded(*file_)) throw;
  }
  const std::shared_ptr<QPDF> asItIs = std::move(qpdf_);
  try {
    Repair(repair, password);
    return;
  } catch (const EngineError& error) {
    if (error.code() != kErrorDamaged) throw;
  }
  if (opened) {
    qpdf_ = asItIs;
    return;
  }
  OpenView(password, Recovery::kOn);
  repaired_ = true;
  Ask([&] { return ObjectStreams(file_->Size()).Check(*qpdf_); });
}

void QpdfDocument::OpenView(const std::string& password, Recovery recovery) {
  recovery_ = recovery;
  OpenWith(password, [&](const std::string& encoded) {
    view_ = {file_, ""};
    return OpenParser(view_, encoded, recovery);
  });
}

void QpdfDocument::Repair(FileRepair& repair, const std::string& password) {
  recovery_ = Recovery::kOff;
  OpenWith(password, [&](const std::string& encoded) {
    FileRepair::Result result = repair.Open(encoded);
    view_ = std::move(result.view);
    repairedTail_ = std::move(result.tail);
    return result.document;
  });
  repaired_ = true;
}

// Opens the parser with the first encoding of the password that fits.
void QpdfDocument::OpenWith(const std::string& password,
                            const std::function<std::shared_ptr<QPDF>(const std::string&)>& open) {
  for (std::string& encoded : PasswordEncodings(password)) {
    qpdf_ = Translated([&] { return open(encoded); });
    if (qpdf_ == nullptr) continue;
    password_ = std::move(encoded);
    return;
  }
  throw EngineError(password.empty() ? kErrorPasswordNeeded : kErrorPasswordWrong, "the password does not fit");
}

std::unique_ptr<QpdfDocument> QpdfDocument::New() {
  std::unique_ptr<QpdfDocument> document(new QpdfDocument);
  document->qpdf_ = QPDF::create();
  document->qpdf_->emptyPDF();
  const QPDFObjectHandle page = QPDFObjectHandle::parse("<< /Type /Page /MediaBox [0 0 612 792] /Resources << >> >>");
  document->qpdf_->addPage(document->qpdf_->makeIndirectObject(page), false);
  return document;
}

std::string QpdfDocument::BaseUrl() {
  return Ask([&] { return BaseUrlOf(qpdf_->getRoot()); });
}

std::string QpdfDocument::Information(const std::string& key) {
  return Ask([&] { return InformationOf(qpdf_->getTrailer().getKey("/Info"), key); });
}

int QpdfDocument::PageCount() {
  return Ask([&] { return static_cast<int>(qpdf_->getAllPages().size()); });
}

BackendDocument::PageGeometry QpdfDocument::Page(int page) {
  return Ask([&] {
    QPDFPageObjectHelper helper(qpdf_->getAllPages().at(static_cast<std::size_t>(page) - 1));
    PageGeometry geometry{612, 792, 0};  // what readers take a broken page for
    QPDFObjectHandle box = helper.getAttribute("/MediaBox", false);
    if (box.isRectangle()) {
      const QPDFObjectHandle::Rectangle rectangle = box.getArrayAsRectangle();
      geometry.width = rectangle.urx - rectangle.llx;
      geometry.height = rectangle.ury - rectangle.lly;
    }
    QPDFObjectHandle rotate = helper.getAttribute("/Rotate", false);
    if (rotate.isInteger()) geometry.rotation = static_cast<int>((rotate.getIntValue() % 360 + 360) % 360) / 90 * 90;
    return geometry;
  });
}

BackendDocument::PasswordMatch QpdfDocument::Check(const std::string& password) {
  if (file_ == nullptr || !Encrypted()) return {};
  return Translated([&]() -> PasswordMatch {
    for (const std::string& encoded : PasswordEncodings(password)) {
      BackendInputSource::View view = view_;
      const std::shared_ptr<QPDF> opened = OpenParser(view, encoded, recovery_);
      if (opened != nullptr) return {opened->userPasswordMatched(), opened->ownerPasswordMatched()};
    }
    return {};
  });
}

bool QpdfDocument::Linearized() {
  return file_ != nullptr && Ask([&] { return qpdf_->isLinearized(); });
}

BackendDocument::Signatures QpdfDocument::FindSignatures() {
  return Ask([&] { return SearchSignatures(*qpdf_); });
}

bool QpdfDocument::Repaired() {
  NoteWarnings();
  return repaired_;
}

ObjectId QpdfDocument::Root() {
  return Ask([&] { return IdOf(qpdf_->getRoot()); });
}

std::vector<ChangedObject> QpdfDocument::Update(const Changes& changes, FileTail& tail) {
  return Ask([&] {
    std::vector<ChangedObject> objects;
    const auto add = [&](ObjectId id, QPDFObjectHandle object) {
      const StringCipher cipher = StringCipher::For(*qpdf_, id);
      objects.push_back({id, ObjectWriter(cipher).Write(object)});
    };
    QPDFObjectHandle catalog = qpdf_->getRoot();
    if (const auto table = qpdf_->getXRefTable(); !table.empty()) {
      tail.size = std::max(tail.size, static_cast<std::uint32_t>(table.rbegin()->first.getObj()) + 1);
    }
    if (changes.baseUrl) {
      QPDFObjectHandle changed = catalog.shallowCopy();
      SetBaseUrl(changed, *changes.baseUrl);
      add(tail.root, changed);
    }
    if (!changes.information.empty()) {
      QPDFObjectHandle old = qpdf_->getTrailer().getKey("/Info");
      QPDFObjectHandle changed = DictionaryCopy(old);
      SetInformation(changed, changes);
      ObjectId id = IdOf(old);
      if (!old.isIndirect() || !old.isDictionary()) {
        id = {tail.size++, 0};
        SetTrailerEntry(tail, "/Info", std::to_string(id.number) + " 0 R");
      }
      add(id, changed);
    }
    return objects;
  });
}

// The saved document if it is sound and holds the changes, otherwise null.
std::unique_ptr<QpdfDocument> QpdfDocument::OpenSaved(std::shared_ptr<const InputFile> saved,
                                                      const Changes& changes) const {
  try {
    std::unique_ptr<QpdfDocument> other = OpenFrom(Origin::kOwnSave, std::move(saved), password_);
    if (changes.baseUrl && other->BaseUrl() != *changes.baseUrl) return nullptr;
    for (const auto& [key, value] : changes.information) {
      if (other->Information(key) != value) return nullptr;
    }
    return other->Repaired() ? nullptr : std::move(other);
  } catch (const EngineError&) {
    return nullptr;
  }
}

bool QpdfDocument::VerifyUpdate(std::shared_ptr<const InputFile> updated, const Changes& changes,
                                const std::vector<ChangedObject>& objects) {
  const std::unique_ptr<QpdfDocument> other = OpenSaved(std::move(updated), changes);
  if (other == nullptr) return false;
  const auto before = qpdf_->getXRefTable();
  const auto after = other->qpdf_->getXRefTable();
  const auto kept = [&](const auto& entry) {
    const QPDFObjGen id = entry.first;
    if (std::any_of(objects.begin(), objects.end(),
                    [&](const ChangedObject& object) { return static_cast<int>(object.id.number) == id.getObj(); })) {
      return true;
    }
    const auto found = after.find(id);
    return found != after.end() && SamePlace(entry.second, found->second);
  };
  return std::all_of(before.begin(), before.end(), kept);
}

bool QpdfDocument::VerifyRewrite(std::shared_ptr<const InputFile> rewritten, const Changes& changes) {
  const std::unique_ptr<QpdfDocument> other = OpenSaved(std::move(rewritten), changes);
  return other != nullptr && other->Encrypted() == Encrypted();
}

void QpdfDocument::Rewrite(const Changes& changes, OutputFile& output) {
  Ask([&] {
    QPDFObjectHandle catalog = qpdf_->getRoot();
    QPDFObjectHandle trailer = qpdf_->getTrailer();
    const ScopedEntry uri(catalog, "/URI");
    const ScopedEntry info(trailer, "/Info");
    const ScopedEntry size(trailer, "/Size");
    const ScopedEntry oldId(trailer, "/ID");
    const ScopedEntry oldEncrypt(trailer, "/Encrypt");
    // The parser does without these entries and the key's /Length, but the writer goes by them.
    trailer.replaceKey("/Size", QPDFObjectHandle::newInteger(0));
    if (!IsIdentifier(trailer.getKey("/ID"))) {
      trailer.replaceKey("/ID", Encrypted() ? QPDFObjectHandle::parse("[()()]") : QPDFObjectHandle::newNull());
    }
    if (Encrypted()) {
      QPDFObjectHandle encrypt = DictionaryCopy(trailer.getKey("/Encrypt"));
      const auto bits = static_cast<long long>(qpdf_->getEncryptionKey().size()) * 8;
      encrypt.replaceKey("/Length", QPDFObjectHandle::newInteger(bits));
      trailer.replaceKey("/Encrypt", encrypt);
    }
    if (changes.baseUrl) SetBaseUrl(catalog, *changes.baseUrl);
    if (!changes.information.empty()) {
      QPDFObjectHandle changed = DictionaryCopy(trailer.getKey("/Info"));
      SetInformation(changed, changes);
      trailer.replaceKey("/Info", qpdf_->makeIndirectObject(changed));
    }
    // The writer would inflate metadata, whatever comes out of it.
    for (QPDFObjectHandle& object : qpdf_->getAllObjects()) {
      if (object.isStream()) object.setFilterOnWrite(false);
    }
    OutputPipeline pipeline(output);
    QPDFWriter writer(*qpdf_);
    writer.setOutputPipeline(&pipeline);
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.write();
    pipeline.ThrowFailure();
    return true;
  });
}

}  // namespace engine
