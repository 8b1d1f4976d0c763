// SPDX-License-Identifier: Apache-2.0
#include "engine/api/Instance.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/base/EngineError.h"

namespace engine {

namespace {

void RequireIntLength(std::size_t length) {
  if (length > std::size_t{std::numeric_limits<int>::max()}) {
    throw EngineError(kErrorFileTooLarge, "the result's length does not fit an int");
  }
}

}  // namespace

int Instance::Add(std::unique_ptr<Document> document) {
  // After 2^31 - 1 documents the numbers start again and skip those in use.
  do {
    lastId_ = lastId_ == std::numeric_limits<int>::max() ? 1 : lastId_ + 1;
  } while (Find(lastId_) != documents_.end());
  documents_.push_back({lastId_, std::move(document)});
  return selected_ = lastId_;
}

void Instance::Remove(int documentId) {
  const auto found = Find(documentId);
  if (found == documents_.end()) throw EngineError(kErrorNoDocument, "no document has this ID");
  documents_.erase(found);
  if (selected_ == documentId) selected_ = documents_.empty() ? 0 : documents_.back().id;
}

void Instance::Select(int documentId) {
  if (Find(documentId) == documents_.end()) throw EngineError(kErrorNoDocument, "no document has this ID");
  selected_ = documentId;
}

Document& Instance::Selected() {
  const auto found = Find(selected_);
  if (found == documents_.end()) throw EngineError(kErrorNoDocument, "no document is selected");
  return *found->document;
}

int Instance::DocumentId(int index) const {
  if (index < 1 || index > DocumentCount()) throw EngineError(kErrorBadArgument, "no document has this index");
  return documents_[static_cast<std::size_t>(index) - 1].id;
}

wchar_t* Instance::Keep(std::wstring text) {
  RequireIntLength(text.size());
  ForgetResult();
  wideResult_ = std::move(text);
  return wideResult_.data();
}

char* Instance::Keep(std::string bytes) {
  RequireIntLength(bytes.size());
  ForgetResult();
  byteResult_ = std::move(bytes);
  return byteResult_.data();
}

void Instance::ForgetResult() {
  wideResult_ = std::wstring();
  byteResult_ = std::string();
}

std::vector<Instance::Entry>::iterator Instance::Find(int documentId) {
  return std::find_if(documents_.begin(), documents_.end(), [&](const Entry& entry) { return entry.id == documentId; });
}

}  // namespace engine
