// SPDX-License-Identifier: Apache-2.0

// Opening, choosing and saving documents.

#include <limits>

#include "engine/api/Call.h"
#include "engine/api/Exports.h"
#include "engine/base/EngineError.h"
#include "engine/base/Text.h"

using engine::Call;
using engine::Document;
using engine::Guarded;
using engine::RawFromWide;

int HPLNewDocument(int instance) {
  return Guarded<int>(instance, [](Call& call) {
    call.Library().Add(Document::New());
    return 1;
  });
}

int HPLLoadFromFile(int instance, void* fileName, void* password) {
  return Guarded<int>(instance, {fileName, password}, [&](Call& call) {
    call.Library().Add(Document::FromFile(RawFromWide(call.Text(fileName)), RawFromWide(call.Text(password))));
    return 1;
  });
}

int HPLLoadFromString(int instance, void* source, void* password) {
  return Guarded<int>(instance, {password}, [&](Call& call) {
    call.Library().Add(Document::FromBytes(std::string(call.Bytes(source)), RawFromWide(call.Text(password))));
    return 1;
  });
}

int HPLSaveToFile(int instance, void* fileName) {
  return Guarded<int>(instance, {fileName}, [&](Call& call) {
    call.Selected().SaveToFile(RawFromWide(call.Text(fileName)));
    return 1;
  });
}

char* HPLSaveToString(int instance) {
  return Guarded<char*>(instance, [](Call& call) { return call.Selected().SaveToBytes(); });
}

int HPLDocumentCount(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Library().DocumentCount(); });
}

int HPLSelectDocument(int instance, int documentId) {
  return Guarded<int>(instance, [&](Call& call) {
    call.Library().Select(documentId);
    return 1;
  });
}

int HPLSelectedDocument(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Library().SelectedId(); });
}

int HPLRemoveDocument(int instance, int documentId) {
  return Guarded<int>(instance, [&](Call& call) {
    call.Library().Remove(documentId);
    return 1;
  });
}

int HPLGetDocumentID(int instance, int index) {
  return Guarded<int>(instance, [&](Call& call) { return call.Library().DocumentId(index); });
}

wchar_t* HPLGetDocumentFileName(int instance) {
  return Guarded<wchar_t*>(instance, [](Call& call) { return engine::WideFromRaw(call.Selected().FileName()); });
}

int HPLGetDocumentFileSize(int instance) {
  return Guarded<int>(instance, [](Call& call) {
    const std::uint64_t size = call.Selected().FileSize();
    if (size > std::uint64_t{std::numeric_limits<int>::max()}) {
      throw engine::EngineError(kErrorFileTooLarge, "the file's size does not fit an int");
    }
    return static_cast<int>(size);
  });
}

int HPLGetDocumentRepaired(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Repaired() ? 1 : 0; });
}

int HPLIsLinearized(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().Linearized() ? 1 : 0; });
}

int HPLEncryptionStatus(int instance) {
  return Guarded<int>(instance, [](Call& call) { return call.Selected().EncryptionStatus(); });
}

int HPLCheckPassword(int instance, void* password) {
  return Guarded<int>(instance, {password}, [&](Call& call) {
    const auto match = call.Selected().CheckPassword(RawFromWide(call.Text(password)));
    return (match.user ? 1 : 0) + (match.owner ? 2 : 0);
  });
}
