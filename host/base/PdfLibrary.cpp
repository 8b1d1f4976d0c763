// SPDX-License-Identifier: Apache-2.0
#include "host/base/PdfLibrary.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <QString>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"
#include "pdflib/Utf8.h"

namespace {

// The message for the call that failed last, with what the library knows besides.
std::string DamageMessage(PdfLibrary::Wrapper& library) {
  const std::string why = PdfLibrary::ToUtf8(library.GetInformation(kInformationWhyFailed));
  const std::string message = PdfLibrary::ErrorMessage(kErrorDamaged);
  return why.empty() ? message : message + ": " + why;
}

// Checks the name itself, because the library's error is less precise.
std::string LoadingMessage(PdfLibrary::Wrapper& library, int errorCode, const std::string& file) {
  struct stat status = {};
  if (errorCode == kErrorFileUnreadable && stat(file.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return "is a folder";
    if (!S_ISREG(status.st_mode)) return "not a regular file";
  }
  if (errorCode == kErrorDamaged) return DamageMessage(library);
  return PdfLibrary::ErrorMessage(errorCode);
}

// The library does not report the system's error. It writes a file beside the output and renames it; making such a file
// shows the error.
std::string WhyNotWritable(const std::string& output) {
  struct stat status = {};
  if (stat(output.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return "a folder has that name";
  const std::size_t slash = output.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : output.substr(0, slash + 1);
  std::string probe = folder + "/.vorlane-probe-XXXXXX";
  const int file = mkstemp(probe.data());
  if (file < 0) return std::generic_category().message(errno);
  close(file);
  unlink(probe.c_str());
  return {};
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

std::string PdfLibrary::LoadDocument(Wrapper& library, const std::string& file,
                                     const std::vector<std::wstring>& passwords) {
  const std::wstring name = NativeName::ToWide(file);
  const std::vector<std::wstring> none(1);
  int error = kErrorNone;
  // Many files need no password for reading; the given ones may be for others.
  for (const auto* tried : {&passwords, &none}) {
    for (const std::wstring& password : *tried) {
      if (library.LoadFromFile(name, password) != 0) return {};
      const int last = library.LastErrorCode();
      if (last != kErrorPasswordWrong && last != kErrorPasswordNeeded) return LoadingMessage(library, last, file);
      if (error == kErrorNone) error = last;
    }
  }
  return LoadingMessage(library, error, file);
}

std::string PdfLibrary::SavingMessage(Wrapper& library, int errorCode, const std::string& output) {
  if (errorCode == kErrorDamaged) return DamageMessage(library);
  const std::string message = ErrorMessage(errorCode);
  const std::string reason = errorCode == kErrorCannotWrite ? WhyNotWritable(output) : std::string();
  return reason.empty() ? message : message + ": " + reason;
}

std::string PdfLibrary::ToUtf8(const std::wstring& text) {
  return Utf8::AsciiPrefix(text) == text.size() ? std::string(text.begin(), text.end())
                                                : QString::fromStdWString(text).toUtf8().toStdString();
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
