// SPDX-License-Identifier: Apache-2.0
#include "engine/document/Document.h"

#include <sys/stat.h>

#include <utility>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/document/BackendModule.h"
#include "engine/quick/BaseUrl.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/AppendUpdate.h"

namespace engine {

std::unique_ptr<Document> Document::New() {
  std::unique_ptr<Document> document(new Document);
  document->full_ = BackendModule::Get().New();
  return document;
}

std::unique_ptr<Document> Document::FromFile(const std::string& path, const std::string& password) {
  std::unique_ptr<Document> document = FromSource(InputFile::Open(path), password);
  document->fileName_ = path;
  return document;
}

std::unique_ptr<Document> Document::FromBytes(std::string bytes, const std::string& password) {
  return FromSource(InputFile::FromBytes(std::move(bytes)), password);
}

std::unique_ptr<Document> Document::FromSource(std::shared_ptr<const InputFile> source, const std::string& password) {
  std::unique_ptr<Document> document(new Document);
  document->password_ = password;
  document->Open(std::move(source));
  return document;
}

// Strong guarantee: a document that cannot be opened leaves this one as it was.
void Document::Open(std::shared_ptr<const InputFile> source) {
  std::optional<QuickDocument> quick = QuickReader::Read(*source);
  std::unique_ptr<BackendDocument> full;
  if (!quick) full = BackendModule::Get().Open(source, password_);
  source_ = std::move(source);
  quick_ = std::move(quick);
  full_ = std::move(full);
  fullBaseUrl_.reset();
  tail_.reset();
  signatures_.reset();
  changes_ = Changes();
  appendFailed_ = false;
  sourceReplaced_ = false;
}

// After a save onto itself the document is what that save wrote; read again only when somebody asks.
void Document::FollowReplacedSource() {
  if (sourceReplaced_) Open(InputFile::Open(source_->Path()));
}

bool Document::LeadsToSource(const std::string& path) const {
  if (source_ == nullptr || source_->InMemory()) return false;
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && status.st_dev == source_->GetIdentity().device &&
         status.st_ino == source_->GetIdentity().inode;
}

std::uint64_t Document::FileSize() {
  FollowReplacedSource();
  return source_ != nullptr ? source_->Size() : 0;
}

const std::string& Document::StoredBaseUrl() {
  if (quick_) return quick_->baseUrl;
  if (!fullBaseUrl_) fullBaseUrl_ = Full().BaseUrl();
  return *fullBaseUrl_;
}

std::string Document::BaseUrl() {
  return changes_.baseUrl ? *changes_.baseUrl : StoredBaseUrl();
}

void Document::SetBaseUrl(const std::string& url) {
  if (url == StoredBaseUrl()) {
    changes_.baseUrl.reset();
  } else {
    changes_.baseUrl = url;
  }
}

std::string Document::Information(const std::string& key) {
  const auto changed = changes_.information.find(key);
  return changed != changes_.information.end() ? changed->second : Full().Information(key);
}

void Document::SetInformation(const std::string& key, const std::string& value) {
  if (value == Full().Information(key)) {
    changes_.information.erase(key);
  } else {
    changes_.information[key] = value;
  }
}

void Document::SelectPage(int page) {
  if (page < 1 || page > Full().PageCount()) throw EngineError(kErrorBadArgument, "the document has no such page");
  selectedPage_ = page;
}

BackendDocument::PageGeometry Document::PageGeometry() {
  if (selectedPage_ > Full().PageCount()) throw EngineError(kErrorBadArgument, "the document has no such page");
  return Full().Page(selectedPage_);
}

bool Document::Repaired() {
  return !quick_ && source_ != nullptr && Full().Repaired();
}

BackendDocument::Signatures Document::Signatures() {
  if (quick_ && !quick_->hasAcroForm && !quick_->hasPerms) return {};
  if (!signatures_) signatures_ = Full().FindSignatures();
  return *signatures_;
}

int Document::EncryptionStatus() {
  if (quick_ || !Full().Encrypted()) return 0;  // the quick reader opens no encrypted document
  return Full().OpenedWith().owner ? 2 : 1;
}

BackendDocument& Document::Full() {
  if (full_ == nullptr) full_ = BackendModule::Get().Open(source_, password_);
  return *full_;
}

const std::optional<FileTail>& Document::Tail() {
  if (!tail_) tail_ = quick_ ? quick_->tail : QuickReader::ReadTail(*source_);
  return *tail_;
}

SavePlan Document::Plan() {
  using Way = SavePlan::Way;
  if (source_ == nullptr) return {Way::kRewrite, "new document"};
  FollowReplacedSource();
  if (changes_.Empty()) return {Way::kUnchanged, ""};
  if (appendFailed_) return {Way::kRewrite, "an appended update was not readable"};
  if (QuickSuffices()) return {Way::kIncremental, ""};
  if (Full().Repaired()) return {Way::kRewrite, "cross-reference repaired"};
  if (!Tail() || Tail()->root != Full().Root()) {
    return {Way::kRewrite, "no update can be appended to the last cross-reference section"};
  }
  return {Way::kIncremental, ""};
}

void Document::SaveToFile(const std::string& path) {
  FollowReplacedSource();
  if (Plan().way == SavePlan::Way::kUnchanged && LeadsToSource(path)) {
    lastSaved_ = SavePlan::Way::kUnchanged;
    return;
  }
  Written written = Write([&] { return std::make_unique<OutputFile>(path); });
  written.output->Commit();
  lastSaved_ = written.way;
  if (source_ == nullptr || source_->InMemory()) return;
  const InputFile::Identity& source = source_->GetIdentity();
  sourceReplaced_ = written.output->Replaced(source.device, source.inode);
}

std::string Document::SaveToBytes() {
  Written written = Write([] { return std::make_unique<OutputFile>(); });
  lastSaved_ = written.way;
  return written.output->TakeBytes();
}

// Where a repair found another catalog than the quick reader, the file shall hold the base URL that the document has
// told.
Changes Document::ChangesForFull() {
  Changes changes = changes_;
  if (quick_ && !changes.baseUrl && Full().BaseUrl() != quick_->baseUrl) changes.baseUrl = quick_->baseUrl;
  return changes;
}

Document::Written Document::Write(const MakeOutput& make) {
  std::unique_ptr<OutputFile> output = make();
  const SavePlan::Way way = Plan().way;
  switch (way) {
    case SavePlan::Way::kUnchanged:
      output->CopyFrom(*source_);
      break;
    case SavePlan::Way::kIncremental:
      if (Append(*output)) break;
      appendFailed_ = true;
      // Whoever asked how the save is going to be written was told otherwise; with signatures at stake, let them ask
      // anew.
      if (Signatures().count > 0) throw EngineError(kErrorCannotAppend, "the signed document can only be rewritten");
      return Write(make);
    case SavePlan::Way::kRewrite:
      Rewrite(*output);
      break;
  }
  return {std::move(output), way};
}

void Document::Rewrite(OutputFile& output) {
  const Changes changes = ChangesForFull();
  Full().Rewrite(changes, output);
  if (source_ != nullptr) source_->CheckUnchanged();
  if (!Full().VerifyRewrite(output.ReadBack(), changes)) {
    throw EngineError(kErrorDamaged, "the rewritten document does not read back");
  }
}

bool Document::Append(OutputFile& output) {
  if (QuickSuffices()) {
    AppendUpdate(*source_, quick_->tail, {{quick_->tail.root, WithBaseUrl(*quick_, *changes_.baseUrl)}}, output);
    return true;
  }
  FileTail tail = *Tail();
  const Changes changes = ChangesForFull();
  const std::vector<ChangedObject> objects = Full().Update(changes, tail);
  AppendUpdate(*source_, tail, objects, output);
  return Full().VerifyUpdate(output.ReadBack(), changes, objects);
}

}  // namespace engine
