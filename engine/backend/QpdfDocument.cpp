// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/QpdfDocument.h"

#include <algorithm>
#include <exception>
#include <new>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QPDFXRefEntry.hh>
#include <set>
#include <utility>

#include "engine/backend/BackendInputSource.h"
#include "engine/backend/CompleteTail.h"
#include "engine/backend/CryptFilters.h"
#include "engine/backend/FileRepair.h"
#include "engine/backend/NameEscapes.h"
#include "engine/backend/ObjectIds.h"
#include "engine/backend/ObjectStreams.h"
#include "engine/backend/ObjectWriter.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/ParserOpening.h"
#include "engine/backend/SignatureSearch.h"
#include "engine/backend/Soundness.h"
#include "engine/backend/StringCipher.h"
#include "engine/backend/XrefEntry.h"
#include "engine/backend/XrefStreamGuard.h"
#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/syntax/LiteralString.h"
#include "engine/syntax/MapStrings.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// The parser calls streams that it cannot decode unsupported as well.
bool IsAboutEncryption(const QPDFExc& error) {
  const std::string text = error.getObject() + error.getMessageDetail();
  return error.getErrorCode() == qpdf_e_unsupported && text.find("encrypt") != std::string::npos;
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
  } catch (const TooManyTokens&) {
    throw EngineError(kErrorOutOfMemory, "the document's objects would take too much memory");
  } catch (const QPDFExc& error) {
    if (IsAboutLackOfMemory(error.what())) throw std::bad_alloc();
    throw EngineError(IsAboutEncryption(error) ? kErrorUnsupportedSecurity : kErrorDamaged, error.getMessageDetail());
  } catch (const std::exception& error) {
    if (IsAboutLackOfMemory(error.what())) throw std::bad_alloc();
    throw EngineError(kErrorDamaged, error.what());
  }
}

// ISO 32000-1, annex H.3, note 13: the header is within the first 1024 bytes.
bool HasHeader(const InputFile& file) {
  return file.ReadAt(0, 1024).find("%PDF-") != std::string::npos;
}

bool IsAboutRepair(const QPDFExc& warning) {
  return warning.getMessageDetail().find("reconstruct cross-reference table") != std::string::npos;
}

// A repair reads every byte. Of a file with holes that may be any number of them, at no cost to who made it.
bool RepairIsBounded(const InputFile& file) {
  constexpr std::uint64_t kLargestWithHoles = std::uint64_t{1} << 30;
  return !file.Sparse() || file.Size() <= kLargestWithHoles;
}

// A copy of the entry's dictionary, or a new one in place of a missing or broken one.
QPDFObjectHandle DictionaryCopy(QPDFObjectHandle object) {
  return object.isDictionary() ? object.shallowCopy() : QPDFObjectHandle::newDictionary();
}

bool IsIdentifier(QPDFObjectHandle id) {
  return id.isArray() && id.getArrayNItems() == 2 && id.getArrayItem(0).isString() && id.getArrayItem(1).isString();
}

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
  if (one.getType() != other.getType()) return false;
  return one.getType() == kInFile ? one.getOffset() == other.getOffset()
                                  : one.getObjStreamNumber() == other.getObjStreamNumber() &&
                                        one.getObjStreamIndex() == other.getObjStreamIndex();
}

// What the parser makes of a damaged object is not what other readers make of it. To be called when all is read.
void CheckReadable(QPDF& document) {
  const std::vector<QPDFExc> warnings = document.getWarnings();
  const bool damaged = std::any_of(warnings.begin(), warnings.end(), [](const QPDFExc& warning) {
    return warning.getObject().compare(0, 7, "object ") == 0;
  });
  if (damaged) throw EngineError(kErrorDamaged, "objects of a document that has to be rewritten are damaged");
}

QPDFObjectHandle Parse(QPDF& document, const std::string& text) {
  // By itself a reference would be read as a number.
  return QPDFObjectHandle::parse(&document, '[' + text + "\n]").getArrayItem(0);
}

// One above the highest number with an entry.
std::uint32_t AfterLast(const std::map<QPDFObjGen, QPDFXRefEntry>& entries) {
  return entries.empty() ? 1 : static_cast<std::uint32_t>(entries.rbegin()->first.getObj()) + 1;
}

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
    repaired_ = repaired_ || IsAboutRepair(warning);
    outOfMemory_ = outOfMemory_ || IsAboutLackOfMemory(warning.getMessageDetail());
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
  } catch (const CannotRepair&) {
    throw;
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
    const bool closed = repair.EndIsClosed();
    // Other readers rebuild such a file, and find the objects of all documents in it.
    const bool shifted = !QuickReader::StartsWithHeader(*file_);
    const bool rebuilt = shifted && repair.HoldsTwoDocuments();
    const bool decrypted =
        !LosesEncryption(*qpdf_) && !EncryptionIsDamaged(*qpdf_, *file_, QuickReader::HeaderOffset(*file_));
    const bool sound = closed && decrypted && !rebuilt && Ask([&] { return IsSound(*qpdf_, *file_, repair); });
    // Where a save writes a complete section, readers that rebuilt the file before do so no more. After bytes before
    // the header, poppler does not find the end of a stream with a wrong length where an entry leads to what is added.
    const bool lengthsMatter = shifted || !QuickReader::ReadTail(*file_);
    if (sound && (!lengthsMatter || repair.LengthsAreRight())) return;
    repair.Prefer(SoundEntries(*qpdf_, *file_));
    opened = closed && decrypted;
  } catch (const EngineError& error) {
    if (error.code() != kErrorDamaged || !RepairIsBounded(*file_)) throw;
  }
  std::shared_ptr<QPDF> asItIs = std::move(qpdf_);
  if (!opened) asItIs.reset();
  std::string reason;
  try {
    Repair(repair, password);
    return;
  } catch (const OtherDocument&) {
    throw;
  } catch (const CannotRepair& error) {
    // Any other way to rebuild the file would lose what this one cannot describe.
    if (!opened) throw;
    reason = error.what();
  } catch (const EngineError& error) {
    if (error.code() != kErrorDamaged) throw;
    reason = error.what();
  }
  if (opened) {
    // Readers that rebuild such a file do so with an update that continues its cross-references, too. They would not
    // with a complete section.
    // A damaged catalog would be written as the parser reads it, and others read it otherwise.
    const bool usable = Translated([&] {
      return QuickReader::ReadTail(*file_) && EntriesLeadToObjects(*asItIs, *file_, repair) &&
             !HasInventedKeys(asItIs->getRoot()) && asItIs->getRoot().getDictAsMap().count("/Pages") != 0;
    });
    qpdf_ = asItIs;
    if (!usable || !KnownTail()) throw EngineError(kErrorDamaged, reason);
    return;
  }
  OpenView(password, Recovery::kOn);
  repaired_ = true;
  Ask([&] { return ObjectStreams(file_->Size()).Check(*qpdf_); });
}

void QpdfDocument::OpenView(const std::string& password, Recovery recovery) {
  recovery_ = recovery;
  OpenWith(password, [&](const std::string& encoded) {
    view_ = {file_, "", std::nullopt};
    return OpenParser(view_, encoded, recovery);
  });
}

void QpdfDocument::Repair(FileRepair& repair, const std::string& password) {
  recovery_ = Recovery::kOff;
  OpenWith(password, [&](const std::string& encoded) {
    FileRepair::Result result = repair.Open(encoded);
    view_ = std::move(result.view);
    tail_ = std::move(result.tail);
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

int QpdfDocument::PageCount() {
  return Ask([&] { return static_cast<int>(qpdf_->getAllPages().size()); });
}

std::vector<ObjectId> QpdfDocument::Pages() {
  return Ask([&] {
    std::vector<ObjectId> pages;
    for (const QPDFObjectHandle& page : qpdf_->getAllPages()) {
      const QPDFObjGen id = page.getObjGen();
      pages.push_back(IdOf(id));
    }
    return pages;
  });
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

BackendDocument::Encryption QpdfDocument::EncryptionMethod() {
  const std::optional<EncryptionOf> encryption = EncryptionOf::Document(*qpdf_);
  if (!encryption) return {};
  const QPDF::encryption_method_e method =
      encryption->streams != QPDF::e_none ? encryption->streams : encryption->strings;
  const bool aes = method == QPDF::e_aes || method == QPDF::e_aesv3;
  return {aes ? 2 : 1, static_cast<int>(qpdf_->getEncryptionKey().size()) * 8};
}

BackendDocument::PasswordMatch QpdfDocument::Check(const std::string& password) {
  if (!Encrypted()) return {};
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
  return Ask([&] { return qpdf_->isLinearized(); });
}

BackendDocument::Signatures QpdfDocument::FindSignatures() {
  // What is appended to a sound document harms no signature.
  const bool appends = !Repaired() && !appendFailed_ && Tail();
  return Ask([&] { return SearchSignatures(*qpdf_, appends ? SearchDepth::kFields : SearchDepth::kEverywhere); });
}

bool QpdfDocument::Repaired() {
  NoteWarnings();
  return repaired_;
}

std::optional<std::string> QpdfDocument::ObjectText(ObjectId id) {
  return Ask([&]() -> std::optional<std::string> {
    // The parser keeps every object that it was asked for, and does not report where it found those of a file that it
    // rebuilt.
    if (recovery_ != Recovery::kOn) {
      if (raw_ == nullptr) raw_ = std::make_unique<RawObjects>(*qpdf_, *file_, QuickReader::HeaderOffset(*file_));
      if (std::optional<std::string> text = raw_->Text(id)) return text;
    }
    QPDFObjectHandle object = qpdf_->getObject(IdOf(id));
    if (object.isStream()) return std::nullopt;
    return ObjectWriter().Write(object);
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
  const std::optional<FileTail>& tail = KnownTail();
  return tail ? tail->size : AfterLast(qpdf_->getXRefTable());
}

std::optional<FileTail> QpdfDocument::Tail() {
  return KnownTail();
}

const std::optional<FileTail>& QpdfDocument::KnownTail() {
  if (tailKnown_) return tail_;
  if (!tail_ && recovery_ == Recovery::kOff) tail_ = FindTail();
  // An update of such a file has an object stream, which would have to be encrypted.
  const bool headerFirst = QuickReader::StartsWithHeader(*file_);
  if (tail_ && !headerFirst && tail_->Encrypted() && !tail_->OnlyTables()) tail_.reset();
  tailKnown_ = true;
  return tail_;
}

std::optional<FileTail> QpdfDocument::FindTail() {
  const std::string root = TrailerValue("/Root");
  std::optional<FileTail> tail = QuickReader::ReadTail(*file_);
  if (!tail || root != tail->root.Reference()) tail = CompleteTail(*qpdf_, *file_);
  if (tail) tail->size = std::max(tail->size, AfterLast(qpdf_->getXRefTable()));
  return tail;
}

std::string QpdfDocument::EncryptStrings(ObjectId id, const std::string& text) {
  return Ask([&] {
    const StringCipher cipher = StringCipher::For(*qpdf_, id);
    if (!cipher.Encrypts()) return text;
    return MapStrings(text, [&](const std::string& bytes) { return HexString(cipher.Encrypt(bytes)); });
  });
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
  appendFailed_ = !ReadsBack(std::move(updated), edits);
  return !appendFailed_;
}

// Whether the object has this text; its strings may be written in other ways.
bool QpdfDocument::Has(ObjectId id, const std::string& text) {
  const std::optional<std::string> found = ObjectText(id);
  try {
    if (found && MapStrings(*found, LiteralString) == MapStrings(text, LiteralString)) return true;
  } catch (const PdfSyntaxError&) {
    // Left to the parser.
  }
  return ObjectWriter().Write(qpdf_->getObject(IdOf(id))) == ObjectWriter().Write(Parse(*qpdf_, text));
}

bool QpdfDocument::ReadsBack(std::shared_ptr<const InputFile> updated, const Edits& edits) {
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
        if (!other->Has(id, text)) return false;
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

// Another parser of the document as it was loaded, to be changed before it is written.
std::shared_ptr<QPDF> QpdfDocument::OpenCopy() {
  BackendInputSource::View view = view_;
  std::shared_ptr<QPDF> copy = OpenParser(view, password_, recovery_);
  if (copy == nullptr) throw EngineError(kErrorDamaged, "the document cannot be read again");
  copy->setAttemptRecovery(Repaired());
  return copy;
}

void QpdfDocument::Rewrite(const Edits& edits, OutputFile& output) {
  std::map<QPDFObjGen, QPDFObjGen> numbers;
  ReachableObjects expected;
  Ask([&] {
    const std::shared_ptr<QPDF> copy = OpenCopy();
    for (const auto& [id, text] : edits.Objects()) copy->replaceObject(IdOf(id), Parse(*copy, text));
    QPDFObjectHandle trailer = copy->getTrailer();
    for (const auto& [key, value] : edits.Trailer()) trailer.replaceKey(key, Parse(*copy, value));
    expected = ReachableObjects::Of(*copy);
    CheckReadable(*copy);
    // The parser does without these entries and the key's /Length, but the writer reads them.
    trailer.replaceKey("/Size", QPDFObjectHandle::newInteger(0));
    if (!IsIdentifier(trailer.getKey("/ID"))) {
      trailer.replaceKey("/ID", Encrypted() ? QPDFObjectHandle::parse("[()()]") : QPDFObjectHandle::newNull());
    }
    if (Encrypted()) {
      QPDFObjectHandle encrypt = DictionaryCopy(trailer.getKey("/Encrypt"));
      const auto bits = static_cast<long long>(copy->getEncryptionKey().size()) * 8;
      encrypt.replaceKey("/Length", QPDFObjectHandle::newInteger(bits));
      trailer.replaceKey("/Encrypt", encrypt);
    }
    EscapeNames(*copy);
    // The writer would inflate metadata without a limit.
    for (QPDFObjectHandle& object : copy->getAllObjects()) {
      if (object.isStream()) object.setFilterOnWrite(false);
    }
    OutputPipeline pipeline(output);
    QPDFWriter writer(*copy);
    writer.setOutputPipeline(&pipeline);
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.write();
    pipeline.ThrowFailure();
    for (const auto& [id, text] : edits.Objects()) numbers[IdOf(id)] = writer.getRenumberedObjGen(IdOf(id));
    return true;
  });
  file_->CheckUnchanged();
  if (!VerifyRewrite(output.ReadBack(), edits, numbers, expected)) {
    throw EngineError(kErrorDamaged, "the rewritten document does not hold all that the damaged one has");
  }
}

// Whether the rewritten document is sound and encrypted as this one, and holds those edits that lead anywhere.
// `numbers` are the objects' new ones, 0 for one that nothing refers to.
bool QpdfDocument::VerifyRewrite(std::shared_ptr<const InputFile> rewritten, const Edits& edits,
                                 const std::map<QPDFObjGen, QPDFObjGen>& numbers, const ReachableObjects& expected) {
  const std::unique_ptr<QpdfDocument> other = OpenSaved(std::move(rewritten));
  if (other == nullptr || other->Encrypted() != Encrypted()) return false;
  try {
    return other->Ask([&] {
      if (!ReachableObjects::Of(*other->qpdf_).HasAllOf(expected)) return false;
      for (const auto& [id, text] : edits.Objects()) {
        const QPDFObjGen number = numbers.at(IdOf(id));
        if (number.getObj() != 0 && !Holds(other->qpdf_->getObject(number), Parse(*qpdf_, text))) return false;
      }
      return true;
    });
  } catch (const EngineError&) {
    return false;
  }
}

}  // namespace engine
