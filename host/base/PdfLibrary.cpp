// SPDX-License-Identifier: Apache-2.0
#include "host/base/PdfLibrary.h"

#include <sys/stat.h>

#include <QString>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"
#include "pdflib/LibraryErrorCodes.h"

namespace {

// More precise than the library where the name is not that of a file.
std::string LoadingMessage(int errorCode, const std::string& file) {
  struct stat status = {};
  if (errorCode == kErrorFileUnreadable && stat(file.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return "is a folder";
    if (!S_ISREG(status.st_mode)) return "not a regular file";
  }
  return PdfLibrary::ErrorMessage(errorCode);
}

}  // namespace

std::unique_ptr<PdfLibrary::Wrapper> PdfLibrary::Open(const std::wstring& libraryFile) {
  auto library = std::make_unique<Wrapper>(libraryFile);
  if (!library->LibraryLoaded()) {
    throw CommandError(kExitNotLoaded,
                       QStringLiteral("The PDF library cannot be loaded: it is missing or incomplete."));
  }
  return library;
}

std::string PdfLibrary::LoadDocument(Wrapper& library, const std::string& file, const std::wstring& password) {
  const std::wstring name = NativeName::ToWide(file);
  if (library.LoadFromFile(name, password) != 0) return {};
  const int error = library.LastErrorCode();
  // Many files need no password for reading, whatever the one that was given for others.
  if (error == kErrorPasswordWrong && !password.empty() && library.LoadFromFile(name, {}) != 0) return {};
  return LoadingMessage(error, file);
}

std::string PdfLibrary::ToUtf8(const std::wstring& text) {
  return QString::fromStdWString(text).toUtf8().toStdString();
}

const char* PdfLibrary::ErrorMessage(int errorCode) {
  switch (static_cast<LibraryErrorCode>(errorCode)) {
    case kErrorNotSupported:
      return "the PDF library does not support this";
    case kErrorOutOfMemory:
      return "not enough memory";
    case kErrorFileNotFound:
      return "no such file";
    case kErrorFileUnreadable:
      return "cannot read the file";
    case kErrorNotPdf:
      return "not a PDF";
    case kErrorDamaged:
      return "damaged beyond repair";
    case kErrorPasswordNeeded:
      return "a password is needed";
    case kErrorPasswordWrong:
      return "wrong password";
    case kErrorUnsupportedSecurity:
      return "encrypted in a way that is not supported";
    case kErrorFileTooLarge:
      return "the file is too large";
    case kErrorSourceChanged:
      return "the file changed while it was open";
    case kErrorCannotWrite:
      return "cannot write";
    case kErrorDiskFull:
      return "the disk is full";
    case kErrorBackendMissing:
      return "a part of the PDF library that this needs is missing";
    case kErrorCannotAppend:
      return "signed, and no update can be appended";
    case kErrorNone:
    case kErrorUnknownInstance:
    case kErrorBadBuffer:
    case kErrorNoDocument:
    case kErrorBadArgument:
    case kErrorInternal:
      break;
  }
  return "the PDF library failed";
}
