// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDF.hh>
#include <vector>

#include "engine/backend/FileRepair.h"

namespace engine {

// Whether the cross-references of a document, opened without recovery, lead to its objects: every entry to the object
// that it is about, every object stream to its members, and where numbers have no entry, the catalog and the page tree
// to what they name. What a repair would not find either does not count. Reads the whole file only on suspicion.
// Throws EngineError kErrorDamaged when object streams inflate to far more than the file can hold.
bool IsSound(QPDF& document, const InputFile& file, FileRepair& repair);

// Whether every entry that names a place in the file leads to its object, or nothing in the file is that object.
bool EntriesLeadToObjects(QPDF& document, const InputFile& file, FileRepair& repair);

// Whether the trailer names an encryption dictionary and the document, opened without recovery, seems not to be
// encrypted.
bool LosesEncryption(QPDF& document);

// The objects outside of object streams that the cross-references lead to.
std::vector<FileTail::KeptObject> SoundEntries(QPDF& document, const InputFile& file);

}  // namespace engine
