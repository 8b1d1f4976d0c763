// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "engine/save/Edits.h"

namespace engine {

class LoadedFile;

// The base URL and the document information of a file with its edits. Setting what the file holds takes the edit back.
// All functions throw EngineError as LoadedFile does.

// The bytes of /Base in the catalog's /URI dictionary (ISO 32000-1, 12.6.4.7); empty when there is none or it has a
// wrong type.
std::string BaseUrlOf(LoadedFile& file, const Edits& edits);
// Whether there is such a string, be it an empty one.
bool HasBaseUrl(LoadedFile& file, const Edits& edits);
// `url` is ASCII. An empty one removes /Base, and /URI when nothing else is in it.
void SetBaseUrl(LoadedFile& file, Edits& edits, const std::string& url);

// The version in the file's header, or a later one in the catalog's /Version (ISO 32000-2, 7.5.2 and 7.7.2), as in
// "1.7"; empty when there is neither.
std::string PdfVersionOf(LoadedFile& file, const Edits& edits);

// An entry of the document information dictionary (ISO 32000-1, 14.3.3) by its key without slash, UTF-8; empty when
// there is none or it is not a text.
std::string InformationOf(LoadedFile& file, const Edits& edits, const std::string& key);
// An empty value removes the entry.
void SetInformation(LoadedFile& file, Edits& edits, const std::string& key, const std::string& value);

}  // namespace engine
