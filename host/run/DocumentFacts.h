// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/base/PdfLibrary.h"

// The facts about a document: one JSON object without line breaks, always with the same keys; null where a fact does
// not exist or the library does not know it.
namespace DocumentFacts {

// Of the library's selected document, which was loaded from `file`. Leaves changes in the document that must not be
// saved.
std::string ToJson(PdfLibrary::Wrapper& library, const std::string& file);
// Of a file that cannot be read: its name, size and the error; that it is encrypted, if that is why.
std::string ErrorToJson(const std::string& file, const std::string& error);

}  // namespace DocumentFacts
