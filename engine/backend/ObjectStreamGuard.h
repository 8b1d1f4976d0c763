// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <qpdf/QPDF.hh>

namespace engine {

// Refuses an opened document whose object streams the parser, which decodes each whole and makes objects of all that is
// in it, would turn into far more memory than a file of `fileSize` bytes has reason to ask for. The streams are decoded
// as the parser does it, decryption included, but kept nowhere.
// Throws EngineError kErrorDamaged.
void GuardObjectStreams(QPDF& document, std::uint64_t fileSize);

}  // namespace engine
