// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

#include "engine/backend/BackendInputSource.h"
#include "engine/backend/FileRepair.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/ParserOpening.h"
#include "engine/backend/RawObjects.h"
#include "engine/document/BackendDocument.h"

namespace engine {

class QpdfDocument : public BackendDocument {
 public:
  // See Backend.
  static std::unique_ptr<QpdfDocument> Open(std::shared_ptr<const InputFile> file, const std::string& password);

  int PageCount() override;
  std::vector<ObjectId> Pages() override;
  PageGeometry Page(int page) override;
  bool Encrypted() override { return qpdf_->isEncrypted(); }
  Encryption EncryptionMethod() override;
  PasswordMatch OpenedWith() override { return {qpdf_->userPasswordMatched(), qpdf_->ownerPasswordMatched()}; }
  PasswordMatch Check(const std::string& password) override;
  bool Linearized() override;
  Signatures FindSignatures() override;
  bool Repaired() override;
  std::optional<std::string> ObjectText(ObjectId id) override;
  std::string TrailerValue(const std::string& key) override;
  std::uint32_t FirstFreeNumber() override;
  std::optional<FileTail> Tail() override;
  std::string EncryptStrings(ObjectId id, const std::string& text) override;
  bool VerifyUpdate(std::shared_ptr<const InputFile> updated, const Edits& edits) override;
  void Rewrite(const Edits& edits, OutputFile& output) override;

 private:
  // What was saved from a document that has passed the guards against hostile files need not pass them again.
  enum class Origin { kOutside, kOwnSave };

  QpdfDocument() = default;
  static std::unique_ptr<QpdfDocument> OpenFrom(Origin origin, std::shared_ptr<const InputFile> file,
                                                const std::string& password);
  template <typename Body>
  auto Ask(Body&& body);
  void NoteWarnings();
  void Load(const std::string& password);
  void OpenView(const std::string& password, Recovery recovery);
  void Repair(FileRepair& repair, const std::string& password);
  void OpenWith(const std::string& password,
                const std::function<std::shared_ptr<QPDF>(const std::string& encoded)>& open);
  // The saved document if it is sound, otherwise null.
  std::unique_ptr<QpdfDocument> OpenSaved(std::shared_ptr<const InputFile> saved) const;
  bool VerifyRewrite(std::shared_ptr<const InputFile> rewritten, const Edits& edits,
                     const std::map<QPDFObjGen, QPDFObjGen>& numbers, const ReachableObjects& expected);
  std::shared_ptr<QPDF> OpenCopy();
  const std::optional<FileTail>& KnownTail();
  std::optional<FileTail> FindTail();
  bool Has(ObjectId id, const std::string& text);
  bool ReadsBack(std::shared_ptr<const InputFile> updated, const Edits& edits);

  std::shared_ptr<const InputFile> file_;
  std::string password_;  // the encoding of it that opened the document
  std::shared_ptr<QPDF> qpdf_;
  BackendInputSource::View view_;  // what the parser was shown
  Recovery recovery_ = Recovery::kOff;
  std::optional<FileTail> tail_;
  bool tailKnown_ = false;
  bool repaired_ = false;
  bool appendFailed_ = false;
  bool outOfMemory_ = false;
  std::unique_ptr<RawObjects> raw_;
};

}  // namespace engine
