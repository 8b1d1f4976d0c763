// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/api/BufferPool.h"
#include "engine/document/Document.h"
#include "pdflib/LibraryErrorCodes.h"

namespace engine {

// The state that HPLCreateLibrary() makes: documents, the selected one, buffers, the latest string result, the last
// error.
class Instance {
 public:
  // Takes ownership of the document, selects it and returns its ID, which is positive and not in use.
  int Add(std::unique_ptr<Document> document);
  // Throws EngineError kErrorNoDocument, as do all members that name a document. If the removed document was selected,
  // the latest of the others is selected.
  void Remove(int documentId);
  void Select(int documentId);
  Document& Selected();
  // 0 when there is no document.
  int SelectedId() const { return selected_; }
  int DocumentCount() const { return static_cast<int>(documents_.size()); }
  // The documents in the order of their opening, `index` from 1 on. Throws EngineError kErrorBadArgument.
  int DocumentId(int index) const;

  BufferPool& Buffers() { return buffers_; }

  LibraryErrorCode LastError() const { return lastError_; }
  // A sentence about it; empty when no more is known than its code.
  const std::string& WhyFailed() const { return whyFailed_; }
  void SetLastError(LibraryErrorCode code, std::string why = {}) noexcept {
    lastError_ = code;
    whyFailed_ = std::move(why);
  }

  // Keep a string result until the next one of either kind; the pointer is good until then. Throws EngineError
  // kErrorFileTooLarge for a result whose length does not fit an int.
  wchar_t* Keep(std::wstring text);
  char* Keep(std::string bytes);
  void ForgetResult();
  int WideResultLength() const { return static_cast<int>(wideResult_.size()); }
  int ByteResultLength() const { return static_cast<int>(byteResult_.size()); }

 private:
  struct Entry {
    int id;
    std::unique_ptr<Document> document;
  };
  std::vector<Entry>::iterator Find(int documentId);

  std::vector<Entry> documents_;
  int lastId_ = 0;
  int selected_ = 0;
  BufferPool buffers_;
  std::wstring wideResult_;
  std::string byteResult_;
  LibraryErrorCode lastError_ = kErrorNone;
  std::string whyFailed_;
};

}  // namespace engine
