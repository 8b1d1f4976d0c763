// SPDX-License-Identifier: Apache-2.0
#include "engine/document/LoadedFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/document/BackendModule.h"
#include "engine/links/ObjectTexts.h"
#include "engine/links/PageTree.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/AppendUpdate.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// One empty page, 612 by 792 points.
constexpr char kNewDocument[] =
    "%PDF-1.3\n"
    "1 0 obj\n<< /Type /Catalog /Pages 2 0 R >>\nendobj\n"
    "2 0 obj\n<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>\nendobj\n"
    "3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 612 792 ] /Resources << >> >>\nendobj\n"
    "xref\n0 4\n0000000000 65535 f \n0000000009 00000 n \n0000000058 00000 n \n0000000117 00000 n \n"
    "trailer\n<< /Size 4 /Root 1 0 R >>\nstartxref\n207\n%%EOF\n";

class QuickTexts final : public ObjectTexts {
 public:
  explicit QuickTexts(QuickObjects& objects) : objects_(objects) {}

  std::string Text(ObjectId id) override { return objects_.Text(id).value_or("null"); }

 private:
  QuickObjects& objects_;
};

}  // namespace

LoadedFile LoadedFile::New() {
  LoadedFile file = Open(InputFile::FromBytes(kNewDocument), "");
  file.isNew_ = true;
  return file;
}

LoadedFile LoadedFile::Open(std::shared_ptr<const InputFile> source, const std::string& password) {
  LoadedFile file;
  file.source_ = std::move(source);
  file.password_ = password;
  file.quick_ = QuickReader::Read(*file.source_);
  if (!file.quick_) file.Full();
  return file;
}

std::uint64_t LoadedFile::Size() const {
  return isNew_ ? 0 : source_->Size();
}

bool LoadedFile::IsAt(const std::string& path) const {
  if (source_->InMemory()) return false;
  const InputFile::Identity& identity = source_->GetIdentity();
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && status.st_dev == identity.device && status.st_ino == identity.inode;
}

BackendDocument::Signatures LoadedFile::Signatures() {
  if (quick_ && !quick_->hasAcroForm && !quick_->hasPerms) return {};
  if (!signatures_) signatures_ = Full().FindSignatures();
  return *signatures_;
}

int LoadedFile::EncryptionStatus() {
  if (quick_ || !Full().Encrypted()) return 0;  // the quick reader opens no encrypted file
  return Full().OpenedWith().owner ? 2 : 1;
}

BackendDocument& LoadedFile::Full() {
  if (full_ == nullptr) full_ = BackendModule::Get().Open(source_, password_);
  return *full_;
}

// The quick reader's objects; null where the file is left to the full parser.
QuickObjects* LoadedFile::Objects() {
  if (!quick_ || objectsLeftToParser_) return nullptr;
  try {
    if (objects_ == nullptr) objects_ = std::make_unique<QuickObjects>(*source_, quick_->tail.startXref);
  } catch (const PdfSyntaxError&) {
    LeaveObjectsToParser();
  }
  return objects_.get();
}

void LoadedFile::LeaveObjectsToParser() {
  objects_.reset();
  objectsLeftToParser_ = true;
}

std::optional<std::string> LoadedFile::ObjectText(ObjectId id) {
  if (quick_ && id == quick_->tail.root) return quick_->catalog;
  if (QuickObjects* const objects = Objects()) {
    try {
      return objects->Text(id);
    } catch (const PdfSyntaxError&) {
      LeaveObjectsToParser();
    }
  }
  return Full().ObjectText(id);
}

std::string LoadedFile::TrailerValue(const std::string& key) {
  if (!quick_) return Full().TrailerValue(key);
  return key == "/Root" ? quick_->tail.root.Reference() : quick_->tail.Value(key);
}

const LoadedFile::TrailerEntry& LoadedFile::Trailer(const std::string& key) {
  const auto known = trailer_.find(key);
  if (known != trailer_.end()) return known->second;
  std::string text = TrailerValue(key);
  const std::optional<ObjectId> id = PdfLexer::FindReference(text);
  if (id) text = ObjectText(*id).value_or("");
  return trailer_[key] = {id, DictionaryText::Parse(std::move(text))};
}

const std::vector<ObjectId>& LoadedFile::Pages() {
  if (pages_) return *pages_;
  if (QuickObjects* const objects = Objects()) {
    QuickTexts texts(*objects);
    pages_ = ReadPageTree(texts, quick_->tail.root);
  }
  if (!pages_) pages_ = Full().Pages();
  return *pages_;
}

bool LoadedFile::IsInFile(ObjectId id) {
  const QuickObjects* const objects = Objects();
  return objects != nullptr ? objects->Exists(id) : id.number < FirstFreeNumber();
}

// Whether a save with these edits does without the full parser.
bool LoadedFile::QuickSuffices(const Edits& edits) {
  if (!quick_ || !edits.Trailer().empty()) return false;
  const std::map<ObjectId, std::string>& edited = edits.Objects();
  if (edited.size() == 1 && edited.begin()->first == quick_->tail.root) return true;
  const QuickObjects* const objects = Objects();
  return objects != nullptr &&
         std::all_of(edited.begin(), edited.end(), [&](const auto& object) { return objects->Exists(object.first); });
}

SavePlan LoadedFile::PlanFor(const Edits& edits) {
  if (isNew_) return {SaveMode::kRewrite, "new document"};
  if (edits.Empty()) return {SaveMode::kUnchanged, ""};
  if (appendFailed_) return {SaveMode::kRewrite, "an appended update was not readable"};
  if (QuickSuffices(edits) || Full().Tail()) return {SaveMode::kIncremental, ""};
  if (Full().Repaired()) return {SaveMode::kRewrite, "cross-reference repaired"};
  return {SaveMode::kRewrite, "no update can be appended to the last cross-reference section"};
}

bool LoadedFile::WriteAs(SaveMode mode, const Edits& edits, OutputFile& output) {
  switch (mode) {
    case SaveMode::kUnchanged:
      output.CopyFrom(*source_);
      break;
    case SaveMode::kIncremental:
      if (Append(edits, output)) break;
      appendFailed_ = true;
      signatures_.reset();  // to be looked for everywhere
      // The plan that the caller was given no longer holds. With signatures at stake, the caller must ask again.
      if (Signatures().count > 0) throw EngineError(kErrorCannotAppend, "the signed document can only be rewritten");
      return false;
    case SaveMode::kRewrite:
      Full().Rewrite(ForFull(edits), output);
      break;
  }
  return true;
}

// A repair may have found another catalog than the quick reader. Callers were shown the quick reader's.
Edits LoadedFile::ForFull(const Edits& edits) {
  Edits all = edits;
  if (!quick_ || isNew_ || !Full().Repaired()) return all;
  const ObjectId root = quick_->tail.root;
  if (all.Find(root) == nullptr) all.Set(root, quick_->catalog);
  all.SetTrailer("/Root", root.Reference());
  return all;
}

bool LoadedFile::Append(const Edits& edits, OutputFile& output) {
  if (QuickSuffices(edits)) {
    std::vector<ChangedObject> objects;
    objects.reserve(edits.Objects().size());
    for (const auto& [id, text] : edits.Objects()) objects.push_back({id, text});
    AppendUpdate(*source_, quick_->tail, objects, output);
    return true;
  }
  const Edits all = ForFull(edits);
  FileTail tail = *Full().Tail();
  for (const auto& [key, value] : all.Trailer()) tail.SetValue(key, value);
  std::vector<ChangedObject> objects;
  objects.reserve(all.Objects().size());
  for (const auto& [id, text] : all.Objects()) objects.push_back({id, Full().EncryptStrings(id, text)});
  AppendUpdate(*source_, tail, objects, output);
  return Full().VerifyUpdate(output.ReadBack(), all);
}

}  // namespace engine
