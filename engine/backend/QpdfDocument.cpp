// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/QpdfDocument.h"

#include <algorithm>
#include <exception>
#include <new>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QPDFXRefEntry.hh>
#include <qpdf/QUtil.hh>
#include <set>
#include <utility>

#include "engine/backend/BackendInputSource.h"
#include "engine/backend/CryptFilters.h"
#include "engine/backend/ObjectStreamGuard.h"
#include "engine/backend/ObjectWriter.h"
#include "engine/backend/SignatureSearch.h"
#include "engine/backend/StringCipher.h"
#include "engine/backend/XrefStreamGuard.h"
#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/syntax/LiteralString.h"
#include "engine/syntax/MapStrings.h"

namespace engine {

namespace {

// Where memory runs out, the parser often goes on: with a broken object, and a warning that quotes the exception.
bool TellsOfLackOfMemory(const std::string& message) {
  static const std::string exception = std::bad_alloc().what();
  return message.find(exception) != std::string::npos;
}

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

// Null when the password does not fit.
std::shared_ptr<QPDF> TryOpen(const std::shared_ptr<const InputFile>& file, const std::string& password,
                              const std::vector<BackendInputSource::Edit>& edits = {}) {
  std::shared_ptr<QPDF> document = QPDF::create();
  document->setSuppressWarnings(true);
  document->setAttemptRecovery(RepairIsBounded(*file));
  try {
    document->processInputSource(std::make_shared<BackendInputSource>(file, edits), password.c_str());
  } catch (const QPDFExc& error) {
    if (error.getErrorCode() == qpdf_e_password) return nullptr;
    for (const QPDFExc& warning : document->getWarnings()) {
      if (TellsOfLackOfMemory(warning.getMessageDetail())) throw std::bad_alloc();
    }
    throw;
  }
  const std::vector<BackendInputSource::Edit> needed = EditsOfCryptFilters(*document, *file);
  if (needed.empty()) return document;
  if (!edits.empty()) throw EngineError(kErrorUnsupportedSecurity, "the crypt filters cannot be read");
  return TryOpen(file, password, needed);
}

// Old security handlers take passwords in PDFDocEncoding or what a producer thought it was, new ones in UTF-8.
std::vector<std::string> Encodings(const std::string& password) {
  std::vector<std::string> encodings = {password};
  for (std::string& other : QUtil::possible_repaired_encodings(password)) {
    if (std::find(encodings.begin(), encodings.end(), other) == encodings.end()) encodings.push_back(std::move(other));
  }
  return encodings;
}

// A copy of the entry's dictionary, or a new one in place of a missing or broken one.
QPDFObjectHandle DictionaryCopy(QPDFObjectHandle object) {
  return object.isDictionary() ? object.shallowCopy() : QPDFObjectHandle::newDictionary();
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

QPDFObjGen IdOf(ObjectId id) {
  return QPDFObjGen(static_cast<int>(id.number), static_cast<int>(id.generation));
}

// Gives an object another value for a while.
class ScopedObject {
 public:
  ScopedObject(QPDF& document, QPDFObjGen id, QPDFObjectHandle value)
      : document_(document), id_(id), old_(document.getObject(id).shallowCopy()) {
    document_.replaceObject(id_, value);
  }
  ~ScopedObject() { document_.replaceObject(id_, old_); }
  ScopedObject(const ScopedObject&) = delete;
  ScopedObject& operator=(const ScopedObject&) = delete;

 private:
  QPDF& document_;
  QPDFObjGen id_;
  QPDFObjectHandle old_;
};

// Whether what `set` holds directly is in `found` too. Objects have other numbers there; references are not followed.
bool Holds(QPDFObjectHandle found, QPDFObjectHandle set) {
  if (set.isDictionary()) {
    if (!found.isDictionary()) return false;
    for (const auto& [key, value] : set.getDictAsMap()) {
      // The parser's writer keeps that entry itself.
      if (value.isIndirect() || QPDFObjectHandle(value).isNull() || key == "/Extensions") continue;
      if (!Holds(found.getKey(key), value)) return false;
    }
    return true;
  }
  if (set.isArray()) {
    if (!found.isArray() || found.getArrayNItems() != set.getArrayNItems()) return false;
    for (int i = 0; i < set.getArrayNItems(); ++i) {
      if (!set.getArrayItem(i).isIndirect() && !Holds(found.getArrayItem(i), set.getArrayItem(i))) return false;
    }
    return true;
  }
  if (set.isString()) return found.isString() && found.getStringValue() == set.getStringValue();
  return found.unparseResolved() == set.unparseResolved();
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
  // The parser would search the whole of it for a header.
  if (!RepairIsBounded(*file) && !HasHeader(*file)) throw EngineError(kErrorNotPdf, "no header");
  if (origin == Origin::kOutside) GuardXrefStreams(*file);
  try {
    for (std::string& encoded : Encodings(password)) {
      document->qpdf_ = Translated([&] { return TryOpen(file, encoded); });
      document->password_ = std::move(encoded);
      if (document->qpdf_ != nullptr) break;
    }
    if (document->qpdf_ != nullptr) {
      if (origin == Origin::kOutside) document->Guard(file);
      document->Ask([&] { return document->qpdf_->getRoot(); });
    }
  } catch (const EngineError& error) {
    if (error.code() == kErrorDamaged && !HasHeader(*file)) throw EngineError(kErrorNotPdf, error.what());
    throw;
  }
  if (document->qpdf_ == nullptr) {
    throw EngineError(password.empty() ? kErrorPasswordNeeded : kErrorPasswordWrong, "the password does not fit");
  }
  document->file_ = std::move(file);
  return document;
}

void QpdfDocument::Guard(const std::shared_ptr<const InputFile>& file) {
  const bool repairedBefore = Repaired();
  Ask([&] {
    GuardObjectStreams(*qpdf_, file->Size());
    return true;
  });
  if (Repaired() == repairedBefore) return;
  // The guard came upon damage in a part that may never be asked for; a repair can also lose what is still sound.
  qpdf_ = Translated([&] { return TryOpen(file, password_); });
  repaired_ = false;
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
  if (!Encrypted()) return {};
  return Translated([&]() -> PasswordMatch {
    for (const std::string& encoded : Encodings(password)) {
      const std::shared_ptr<QPDF> opened = TryOpen(file_, encoded);
      if (opened != nullptr) return {opened->userPasswordMatched(), opened->ownerPasswordMatched()};
    }
    return {};
  });
}

bool QpdfDocument::Linearized() {
  return Ask([&] { return qpdf_->isLinearized(); });
}

BackendDocument::Signatures QpdfDocument::FindSignatures() {
  return Ask([&] { return SearchSignatures(*qpdf_); });
}

bool QpdfDocument::Repaired() {
  NoteWarnings();
  return repaired_;
}

std::optional<std::string> QpdfDocument::ObjectText(ObjectId id) {
  return Ask([&]() -> std::optional<std::string> {
    QPDFObjectHandle object = qpdf_->getObject(IdOf(id));
    if (object.isStream()) return std::nullopt;
    // The cross-reference of a repaired document may change with the next repair.
    if (Repaired()) return ObjectWriter().Write(object);
    if (raw_ == nullptr) {
      const std::optional<FileTail> tail = QuickReader::ReadTail(*file_);
      raw_ = std::make_unique<RawObjects>(*qpdf_, *file_, tail ? tail->headerOffset : 0);
    }
    std::optional<std::string> text = raw_->Text(id);
    return text ? std::move(*text) : ObjectWriter().Write(object);
  });
}

std::string QpdfDocument::TrailerValue(const std::string& key) {
  return Ask([&] {
    QPDFObjectHandle value = qpdf_->getTrailer().getKey(key);
    if (value.isIndirect()) return value.unparse();
    return value.isNull() ? std::string() : ObjectWriter().Write(value);
  });
}

std::uint32_t QpdfDocument::FirstFreeNumber() {
  if (firstFree_ == 0) {
    // The parser returns a copy of its table.
    const auto entries = qpdf_->getXRefTable();
    firstFree_ = entries.empty() ? 1 : static_cast<std::uint32_t>(entries.rbegin()->first.getObj()) + 1;
    if (const std::optional<FileTail> tail = QuickReader::ReadTail(*file_))
      firstFree_ = std::max(firstFree_, tail->size);
  }
  return firstFree_;
}

std::optional<FileTail> QpdfDocument::Tail() {
  if (Repaired()) return std::nullopt;
  std::optional<FileTail> tail = QuickReader::ReadTail(*file_);
  if (!tail || TrailerValue("/Root") != tail->root.Reference()) return std::nullopt;
  tail->size = FirstFreeNumber();
  return tail;
}

std::string QpdfDocument::EncryptStrings(ObjectId id, const std::string& text) {
  return Ask([&] {
    const StringCipher cipher = StringCipher::For(*qpdf_, id);
    if (!cipher.Encrypts()) return text;
    return MapStrings(text, [&](const std::string& bytes) { return HexString(cipher.Encrypt(bytes)); });
  });
}

QPDFObjectHandle QpdfDocument::Parse(const std::string& text) {
  // By itself a reference would be read as a number.
  return QPDFObjectHandle::parse(qpdf_.get(), '[' + text + "\n]").getArrayItem(0);
}

std::unique_ptr<QpdfDocument> QpdfDocument::OpenSaved(std::shared_ptr<const InputFile> saved) const {
  try {
    std::unique_ptr<QpdfDocument> other = OpenFrom(Origin::kOwnSave, std::move(saved), password_);
    return other->Repaired() ? nullptr : std::move(other);
  } catch (const EngineError&) {
    return nullptr;
  }
}

bool QpdfDocument::VerifyUpdate(std::shared_ptr<const InputFile> updated, const Edits& edits) {
  const std::unique_ptr<QpdfDocument> other = OpenSaved(std::move(updated));
  if (other == nullptr) return false;
  const auto before = qpdf_->getXRefTable();
  const auto after = other->qpdf_->getXRefTable();
  std::set<int> edited;
  for (const auto& [id, text] : edits.Objects()) edited.insert(IdOf(id).getObj());
  for (const auto& [id, entry] : before) {
    if (edited.count(id.getObj()) != 0) continue;
    const auto found = after.find(id);
    if (found == after.end() || !SamePlace(entry, found->second)) return false;
  }
  try {
    return other->Ask([&] {
      for (const auto& [id, text] : edits.Objects()) {
        QPDFObjectHandle found = other->qpdf_->getObject(IdOf(id));
        if (ObjectWriter().Write(found) != ObjectWriter().Write(other->Parse(text))) return false;
      }
      for (const auto& [key, value] : edits.Trailer()) {
        if (other->TrailerValue(key) != value) return false;
      }
      return !other->Repaired();
    });
  } catch (const EngineError&) {
    return false;
  }
}

void QpdfDocument::Rewrite(const Edits& edits, OutputFile& output) {
  std::map<QPDFObjGen, QPDFObjGen> numbers;
  Ask([&] {
    std::vector<std::unique_ptr<ScopedObject>> objects;
    for (const auto& [id, text] : edits.Objects()) {
      objects.push_back(std::make_unique<ScopedObject>(*qpdf_, IdOf(id), Parse(text)));
    }
    QPDFObjectHandle trailer = qpdf_->getTrailer();
    std::vector<std::unique_ptr<ScopedEntry>> entries;
    for (const auto& [key, value] : edits.Trailer()) {
      entries.push_back(std::make_unique<ScopedEntry>(trailer, key));
      trailer.replaceKey(key, Parse(value));
    }
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
    for (const auto& [id, text] : edits.Objects()) numbers[IdOf(id)] = writer.getRenumberedObjGen(IdOf(id));
    return true;
  });
  file_->CheckUnchanged();
  if (!VerifyRewrite(output.ReadBack(), edits, numbers)) {
    throw EngineError(kErrorDamaged, "the rewritten document does not read back");
  }
}

// Whether the rewritten document is sound and encrypted as this one, and holds those edits that lead anywhere.
// `numbers` are the objects' new ones, 0 for one that nothing refers to.
bool QpdfDocument::VerifyRewrite(std::shared_ptr<const InputFile> rewritten, const Edits& edits,
                                 const std::map<QPDFObjGen, QPDFObjGen>& numbers) {
  const std::unique_ptr<QpdfDocument> other = OpenSaved(std::move(rewritten));
  if (other == nullptr || other->Encrypted() != Encrypted()) return false;
  try {
    return other->Ask([&] {
      for (const auto& [id, text] : edits.Objects()) {
        const QPDFObjGen number = numbers.at(IdOf(id));
        if (number.getObj() != 0 && !Holds(other->qpdf_->getObject(number), Parse(text))) return false;
      }
      return true;
    });
  } catch (const EngineError&) {
    return false;
  }
}

}  // namespace engine
