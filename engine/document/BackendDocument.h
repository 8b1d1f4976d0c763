// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/quick/FileTail.h"
#include "engine/save/Edits.h"

namespace engine {

class InputFile;
class OutputFile;

// A document as the full parser sees it. It stays as it was loaded: edits are given with each save.
// All members throw EngineError, kErrorDamaged when the part of the document that is asked for cannot be read.
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
  struct Encryption {
    int algorithm = 0;  // 0: none, 1: RC4, 2: AES
    int bits = 0;       // of the key
  };
  // Which rights a password gives.
  struct PasswordMatch {
    bool user = false;
    bool owner = false;
  };

  virtual ~BackendDocument() = default;

  virtual int PageCount() = 0;
  // The pages in their order. One that the file does not have as an object gets a number above all of the file's.
  virtual std::vector<ObjectId> Pages() = 0;
  // `page` is from 1 to PageCount().
  virtual PageGeometry Page(int page) = 0;

  virtual bool Encrypted() = 0;
  virtual Encryption EncryptionMethod() = 0;
  // What the password that opened the document matched.
  virtual PasswordMatch OpenedWith() = 0;
  virtual PasswordMatch Check(const std::string& password) = 0;
  virtual bool Linearized() = 0;
  virtual Signatures FindSignatures() = 0;

  // Whether the document had to be repaired, at loading or when a part of it was read later.
  virtual bool Repaired() = 0;

  // The text between "obj" and "endobj", strings in the clear, otherwise byte for byte as in the file where that is
  // plain PDF syntax. "null" when there is no such object; no value for a stream.
  virtual std::optional<std::string> ObjectText(ObjectId id) = 0;
  // The value of a trailer entry, its key with the slash; empty when there is none.
  virtual std::string TrailerValue(const std::string& key) = 0;
  // One above the highest object number.
  virtual std::uint32_t FirstFreeNumber() = 0;

  // What an appended update continues. No value when the document can only be rewritten.
  virtual std::optional<FileTail> Tail() = 0;
  // An object's text as an update holds it: with strings encrypted where the file has them encrypted. Throws
  // EngineError kErrorUnsupportedSecurity when they cannot be encrypted.
  virtual std::string EncryptStrings(ObjectId id, const std::string& text) = 0;
  // Whether `updated`, this document with an appended update, holds the edits and every other object where it was.
  virtual bool VerifyUpdate(std::shared_ptr<const InputFile> updated, const Edits& edits) = 0;

  // Writes the whole document anew, encrypted as it is, and reads it back. Throws EngineError kErrorSourceChanged, or
  // kErrorDamaged when what was written does not hold the edits.
  virtual void Rewrite(const Edits& edits, OutputFile& output) = 0;
};

}  // namespace engine
