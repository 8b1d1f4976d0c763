// SPDX-License-Identifier: Apache-2.0
#include "engine/document/LoadedFile.h"

#include <sys/stat.h>

#include <utility>
#include <vector>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/document/BackendModule.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/AppendUpdate.h"

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

std::optional<std::string> LoadedFile::ObjectText(ObjectId id) {
  return quick_ && id == quick_->tail.root ? quick_->catalog : Full().ObjectText(id);
}

std::string LoadedFile::TrailerValue(const std::string& key) {
  return quick_ && key == "/Root" ? quick_->tail.root.Reference() : Full().TrailerValue(key);
}

bool LoadedFile::QuickSuffices(const Edits& edits) const {
  return quick_ && edits.Trailer().empty() && edits.Objects().size() == 1 && edits.Find(quick_->tail.root) != nullptr;
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
    const ObjectId root = quick_->tail.root;
    AppendUpdate(*source_, quick_->tail, {{root, *edits.Find(root)}}, output);
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
