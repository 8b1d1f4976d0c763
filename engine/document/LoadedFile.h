// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/document/BackendDocument.h"
#include "engine/document/SaveMode.h"
#include "engine/links/QuickObjects.h"
#include "engine/quick/QuickDocument.h"
#include "engine/syntax/DictionaryText.h"

namespace engine {

class InputFile;
class OutputFile;

// A file as it was loaded: the quick reader's view and, once that does not suffice, the full parser's. It never
// changes; the edits of its document are given with each save. All members throw EngineError.
class LoadedFile {
 public:
  // One empty page; a save always writes it anew.
  static LoadedFile New();
  // `password` opens an encrypted file as user or owner and is ignored for others. Throws EngineError with the codes of
  // Backend::Open.
  static LoadedFile Open(std::shared_ptr<const InputFile> source, const std::string& password);

  const InputFile& Source() const { return *source_; }
  // In bytes; 0 for a new document.
  std::uint64_t Size() const;
  // Whether the path leads to the very file that was loaded.
  bool IsAt(const std::string& path) const;

  // Whether the file was damaged and is known in its repaired form.
  bool Repaired() { return !quick_ && Full().Repaired(); }
  BackendDocument::Signatures Signatures();
  // 0: not encrypted; 1: encrypted, opened as user; 2: opened as owner.
  int EncryptionStatus();
  BackendDocument::Encryption Encryption() {
    return quick_ ? BackendDocument::Encryption() : Full().EncryptionMethod();
  }
  // The pages in their order.
  const std::vector<ObjectId>& Pages();
  // The full parser's view, opened on first use.
  BackendDocument& Full();

  // See BackendDocument.
  std::optional<std::string> ObjectText(ObjectId id);
  std::string TrailerValue(const std::string& key);
  // What an entry of the trailer is or refers to, as far as it is a dictionary. Valid while this object lives.
  struct TrailerEntry {
    std::optional<ObjectId> id;
    std::optional<DictionaryText> dictionary;
  };
  const TrailerEntry& Trailer(const std::string& key);
  // Whether a save can change the object.
  bool IsInFile(ObjectId id);
  std::uint32_t FirstFreeNumber() { return Full().FirstFreeNumber(); }

  // How the file would be saved with these edits.
  SavePlan PlanFor(const Edits& edits);
  // Writes the file with these edits in the mode of PlanFor() and returns how it was written. An appended update that
  // does not read back is dropped: the file is rewritten into another output from `make`, or, with signatures at
  // stake, refused (kErrorCannotAppend), and rewritten from then on.
  template <typename MakeOutput>
  SaveMode Write(const Edits& edits, std::unique_ptr<OutputFile>& output, MakeOutput make) {
    output = make();
    const SaveMode mode = PlanFor(edits).mode;
    if (WriteAs(mode, edits, *output)) return mode;
    output = make();
    WriteAs(SaveMode::kRewrite, edits, *output);
    return SaveMode::kRewrite;
  }

 private:
  LoadedFile() = default;
  QuickObjects* Objects();
  void LeaveObjectsToParser();
  bool QuickSuffices(const Edits& edits);
  Edits ForFull(const Edits& edits);
  // False when an appended update does not read back and the file may be rewritten instead.
  bool WriteAs(SaveMode mode, const Edits& edits, OutputFile& output);
  bool Append(const Edits& edits, OutputFile& output);

  std::shared_ptr<const InputFile> source_;
  std::string password_;
  std::optional<QuickDocument> quick_;
  std::unique_ptr<QuickObjects> objects_;
  bool objectsLeftToParser_ = false;
  std::map<std::string, TrailerEntry> trailer_;  // the entries that were asked for
  std::optional<std::vector<ObjectId>> pages_;
  std::unique_ptr<BackendDocument> full_;
  std::optional<BackendDocument::Signatures> signatures_;
  bool isNew_ = false;
  bool appendFailed_ = false;
};

}  // namespace engine
