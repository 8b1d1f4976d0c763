// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <qpdf/QPDF.hh>
#include <string>

namespace engine {

class InputFile;

// An encryption dictionary that means to the parser what the document's own means to its readers; no value when the
// parser takes the document's own right. Crypt filters with the method /None leave strings and streams in the clear
// (ISO 32000-2, table 25); the parser does so only for filters that name no method. Throws EngineError
// kErrorUnsupportedSecurity when strings or streams have a filter that the document does not define or a method that is
// not known: the parser would guess, and a wrong guess turns all text into garbage.
std::optional<std::string> EncryptionWithoutNone(QPDF& document);

// The same for a document whose password did not fit: with the key length that the parser leaves out of account. It
// takes 128 bits for a missing /Length, which means 40, and for every document with crypt filters (ISO 32000-1,
// tables 20 and 25).
std::optional<std::string> EncryptionWithKeyLength(QPDF& document);

// Whether the encryption dictionary or a crypt filter in it is not PDF syntax: readers differ about what it means then.
// Offsets count from the header.
bool EncryptionIsDamaged(QPDF& document, const InputFile& file, std::uint64_t headerOffset);

// Whether a crypt filter has a key length that is neither one in bytes nor one in bits (ISO 32000-1, table 25), or
// bytes of /O or /U are missing (table 21; ISO 32000-2, table 21). Some readers do not open such a file, unless they
// have lost the encryption dictionary.
bool KeyLengthIsDamaged(QPDF& document);

}  // namespace engine
