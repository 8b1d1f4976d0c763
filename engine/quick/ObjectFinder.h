// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "engine/quick/PdfFileText.h"
#include "engine/quick/XrefChain.h"
#include "engine/syntax/ObjectId.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

// Finds dictionary objects by their numbers, at their own offsets or in object streams (ISO 32000-1, 7.5.7). All
// members throw PdfSyntaxError.
class ObjectFinder {
 public:
  // Both must outlive this object.
  ObjectFinder(const PdfFileText& file, const XrefChain& chain) : file_(file), chain_(chain) {}

  RawDictionary ReadDictionary(ObjectId object) const;
  // Throws unless there is such an object, as far as that can be seen without reading it.
  void CheckExists(ObjectId object) const;
  // Throws unless each entry in force leads to its object or object stream. A reader that meets one which does not may
  // rebuild the cross-references. An entry may lead elsewhere if its object is not in the file, as some producers write
  // it for unused numbers. Only files of at most 64 KiB are looked at, which are in memory; in others each object would
  // be a read.
  void CheckEntries() const;

 private:
  RawDictionary ReadFromStream(ObjectId object, const XrefSection::Entry& entry) const;
  std::uint64_t StreamOffset(const XrefSection::Entry& entry) const;
  std::uint64_t StreamLength(std::string_view text) const;

  const PdfFileText& file_;
  const XrefChain& chain_;
};

}  // namespace engine
