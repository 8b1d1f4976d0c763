// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"

// Opens the PDF library and documents with it. Errors are texts for users.
namespace PdfLibrary {

using Wrapper = HalvexPDFLibraryCPDylibCPP1311;

// Loads the library's file, named as the wrapper wants it. Throws CommandError(kExitNotLoaded).
std::unique_ptr<Wrapper> Open(const std::wstring& libraryFile);

// Loads and selects a document with the first of the passwords that fits. Wrong ones are ignored where none is needed.
// Returns an empty text, or why the document could not be loaded, as one clause; the library's last error then says the
// same.
std::string LoadDocument(Wrapper& library, const std::string& file, const std::vector<std::wstring>& passwords);

// Why the document could not be saved to `output`, as one clause, with the system's error if it can be found out.
std::string SavingMessage(Wrapper& library, int errorCode, const std::string& output);

// What an error code of the library means: one clause without a full stop, never null.
const char* ErrorMessage(int errorCode);

// UTF-8 of a text of the library.
std::string ToUtf8(const std::wstring& text);

}  // namespace PdfLibrary
