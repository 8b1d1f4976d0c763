// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

#include "engine/backend/BackendInputSource.h"

namespace engine {

// Whether the parser may rebuild cross-references that it cannot read.
enum class Recovery { kOff, kOn };

// The parser with a file opened; null when the password does not fit. `view` becomes what the parser was shown in the
// end, which the encryption may change. Throws what the parser throws, and EngineError kErrorUnsupportedSecurity.
std::shared_ptr<QPDF> OpenParser(BackendInputSource::View& view, const std::string& password, Recovery recovery);

// The password's bytes as security handlers may take them: old ones PDFDocEncoding or what a producer thought it was,
// new ones UTF-8, of which they use the first 127 bytes (ISO 32000-2, 7.6.4.3.2).
std::vector<std::string> PasswordEncodings(const std::string& password);

// Where memory runs out, the parser often goes on: with a broken object, and a warning that quotes the exception.
bool IsAboutLackOfMemory(const std::string& message);

}  // namespace engine
