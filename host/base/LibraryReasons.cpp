// SPDX-License-Identifier: Apache-2.0
#include "host/base/LibraryReasons.h"

#include <sys/stat.h>

#include "pdflib/LibraryErrorCodes.h"

const char* LibraryReason(int errorCode) {
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

const char* LoadingReason(int errorCode, const std::string& file) {
  struct stat status = {};
  if (errorCode == kErrorFileUnreadable && stat(file.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return "is a folder";
    if (!S_ISREG(status.st_mode)) return "is no regular file";
  }
  return LibraryReason(errorCode);
}
