// SPDX-License-Identifier: Apache-2.0
#include "engine/document/Document.h"

#include <utility>

#include "engine/base/EngineError.h"
#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/document/DocumentProperties.h"

namespace engine {

std::unique_ptr<Document> Document::New() {
  std::unique_ptr<Document> document(new Document);
  document->file_ = LoadedFile::New();
  return document;
}

std::unique_ptr<Document> Document::FromFile(const std::string& path, const std::string& password) {
  std::unique_ptr<Document> document(new Document);
  document->file_ = LoadedFile::Open(InputFile::Open(path), password);
  document->fileName_ = path;
  document->absolutePath_ = document->file_->Source().Path();
  document->password_ = password;
  return document;
}

std::unique_ptr<Document> Document::FromBytes(std::string bytes, const std::string& password) {
  std::unique_ptr<Document> document(new Document);
  document->file_ = LoadedFile::Open(InputFile::FromBytes(std::move(bytes)), password);
  return document;
}

LoadedFile& Document::File() {
  if (!file_) file_ = LoadedFile::Open(InputFile::Open(absolutePath_), password_);
  return *file_;
}

std::string Document::BaseUrl() {
  if (!baseUrl_) baseUrl_ = BaseUrlOf(File(), edits_);
  return *baseUrl_;
}

bool Document::HasBaseUrl() {
  return engine::HasBaseUrl(File(), edits_);
}

std::string Document::PdfVersion() {
  return PdfVersionOf(File(), edits_);
}

void Document::SetBaseUrl(const std::string& url) {
  engine::SetBaseUrl(File(), AllEdits(), url);
  baseUrl_ = url;
}

std::string Document::Information(const std::string& key) {
  return InformationOf(File(), AllEdits(), key);
}

void Document::SetInformation(const std::string& key, const std::string& value) {
  engine::SetInformation(File(), AllEdits(), key, value);
}

DocumentLinks& Document::Links() {
  if (links_ == nullptr) links_ = std::make_unique<DocumentLinks>(File(), edits_);
  return *links_;
}

Edits& Document::AllEdits() {
  if (links_ != nullptr) links_->StoreChanges();
  return edits_;
}

std::string Document::Identifier(int part) {
  if (part < 1 || part > 2) throw EngineError(kErrorBadArgument, "an identifier has two parts");
  return Links().IdentifierPart(File().TrailerValue("/ID"), part);
}

void Document::SelectPage(int page) {
  if (page < 1 || page > PageCount()) throw EngineError(kErrorBadArgument, "the document has no such page");
  selectedPage_ = page;
}

BackendDocument::PageGeometry Document::PageGeometry() {
  if (selectedPage_ > PageCount()) throw EngineError(kErrorBadArgument, "the document has no such page");
  return File().Full().Page(selectedPage_);
}

void Document::SaveToFile(const std::string& path) {
  if (Plan().mode == SaveMode::kUnchanged && File().IsAt(path)) {
    lastSaved_ = SaveMode::kUnchanged;
    return;
  }
  std::unique_ptr<OutputFile> output;
  const SaveMode mode = File().Write(AllEdits(), output, [&] { return std::make_unique<OutputFile>(path); });
  const InputFile::Identity source = file_->Source().GetIdentity();
  output->Commit(&file_->Source());
  lastSaved_ = mode;
  // Replaced under another of its names, the loaded file is still there.
  if (!output->Replaced(source.device, source.inode) || file_->IsAt(absolutePath_)) return;
  links_.reset();
  file_.reset();
  baseUrl_.reset();
  edits_ = Edits();
}

std::string Document::SaveToBytes() {
  std::unique_ptr<OutputFile> output;
  const SaveMode mode = File().Write(AllEdits(), output, [] { return std::make_unique<OutputFile>(); });
  std::string bytes = output->TakeBytes();
  lastSaved_ = mode;
  return bytes;
}

}  // namespace engine
