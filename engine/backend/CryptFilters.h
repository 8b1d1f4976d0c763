// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDF.hh>
#include <vector>

#include "engine/backend/BackendInputSource.h"

namespace engine {

// How the document, opened from the file, has to be shown to the parser so that it reads the strings and streams of
// crypt filters with the method /None as what they are, data in the clear (ISO 32000-2, table 25); the parser does so
// only for filters that name no method, and would take the data for AES. Nothing for other documents. Throws
// EngineError kErrorUnsupportedSecurity when strings or streams have a filter that the document does not define or a
// method that is not known (the parser would guess, and a wrong guess turns all text into garbage), and when the name
// /None does not stand in the file as such.
std::vector<BackendInputSource::Edit> EditsOfCryptFilters(QPDF& document, const InputFile& file);

}  // namespace engine
