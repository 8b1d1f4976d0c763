// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/document/Changes.h"
#include "engine/quick/FileTail.h"
#include "engine/save/ChangedObject.h"

namespace engine {

class InputFile;
class OutputFile;

// A document as the full parser sees it. It stays as it was loaded: changes are given with each save.
// All members throw EngineError, kErrorDamaged when the asked part of the document cannot be read.
class BackendDocument {
 public:
  struct PageGeometry {
    double width = 0;  // of the media box (ISO 32000-1, 14.11.2), in points
    double height = 0;
    int rotation = 0;  // clockwise: 0, 90, 180 or 270
  };
  struct Signatures {
    int count = 0;
    int certificationLevel = 0;  // /P of DocMDP (ISO 32000-1, 12.8.2.2): 1 to 3; 0 for a document without
  };
  // Which rights a password gives.
  struct PasswordMatch {
    bool user = false;
    bool owner = false;
  };

  virtual ~BackendDocument() = default;

  // The bytes of /Base; empty when there is none or it has a wrong type.
  virtual std::string BaseUrl() = 0;
  // UTF-8; empty when there is none or it has a wrong type.
  virtual std::string Information(const std::string& key) = 0;

  virtual int PageCount() = 0;
  // `page` is from 1 to PageCount().
  virtual PageGeometry Page(int page) = 0;

  virtual bool Encrypted() = 0;
  // What the password that opened the document matched.
  virtual PasswordMatch OpenedWith() = 0;
  virtual PasswordMatch Check(const std::string& password) = 0;
  virtual bool Linearized() = 0;
  virtual Signatures FindSignatures() = 0;

  // Whether the document had to be repaired, at loading or when a part of it was read later.
  virtual bool Repaired() = 0;

  // The catalog; {0, 0} when it is no indirect object.
  virtual ObjectId Root() = 0;
  // The objects that hold the changes, for an incremental update whose `tail` has the root of this document; strings
  // are encrypted where the file is. `tail` gets a higher size and a new /Info when an object has to be added. Throws
  // EngineError kErrorUnsupportedSecurity when they cannot be encrypted.
  virtual std::vector<ChangedObject> Update(const Changes& changes, FileTail& tail) = 0;
  // Whether `updated`, this document with an incremental update, holds the changes and every other object where it was.
  virtual bool VerifyUpdate(std::shared_ptr<const InputFile> updated, const Changes& changes,
                            const std::vector<ChangedObject>& objects) = 0;
  // Writes the whole document anew, with its encryption and page count.
  virtual void Rewrite(const Changes& changes, OutputFile& output) = 0;
  // Whether `rewritten` opens with the same password, undamaged, encrypted or not as this document, with the changes.
  virtual bool VerifyRewrite(std::shared_ptr<const InputFile> rewritten, const Changes& changes) = 0;
};

}  // namespace engine
