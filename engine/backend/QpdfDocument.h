// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

#include "engine/document/BackendDocument.h"

namespace engine {

class QpdfDocument : public BackendDocument {
 public:
  // See Backend.
  static std::unique_ptr<QpdfDocument> Open(std::shared_ptr<const InputFile> file, const std::string& password);
  static std::unique_ptr<QpdfDocument> New();

  std::string BaseUrl() override;
  std::string Information(const std::string& key) override;
  int PageCount() override;
  PageGeometry Page(int page) override;
  bool Encrypted() override { return qpdf_->isEncrypted(); }
  PasswordMatch OpenedWith() override { return {qpdf_->userPasswordMatched(), qpdf_->ownerPasswordMatched()}; }
  PasswordMatch Check(const std::string& password) override;
  bool Linearized() override;
  Signatures FindSignatures() override;
  bool Repaired() override;
  ObjectId Root() override;
  std::vector<ChangedObject> Update(const Changes& changes, FileTail& tail) override;
  bool VerifyUpdate(std::shared_ptr<const InputFile> updated, const Changes& changes,
                    const std::vector<ChangedObject>& objects) override;
  void Rewrite(const Changes& changes, OutputFile& output) override;
  bool VerifyRewrite(std::shared_ptr<const InputFile> rewritten, const Changes& changes) override;

 private:
  // What was saved from a document that has passed the guards against hostile files need not pass them again.
  enum class Origin { kOutside, kOwnSave };

  QpdfDocument() = default;
  static std::unique_ptr<QpdfDocument> OpenFrom(Origin origin, std::shared_ptr<const InputFile> file,
                                                const std::string& password);
  template <typename Body>
  auto Ask(Body&& body);
  void NoteWarnings();
  void Guard(const std::shared_ptr<const InputFile>& file);
  std::unique_ptr<QpdfDocument> OpenSaved(std::shared_ptr<const InputFile> saved, const Changes& changes) const;

  std::shared_ptr<const InputFile> file_;  // null for a new document
  std::string password_;                   // the encoding of it that opened the document
  std::shared_ptr<QPDF> qpdf_;
  bool repaired_ = false;
  bool outOfMemory_ = false;
};

}  // namespace engine
