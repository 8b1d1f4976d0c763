// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

/// The results of LastErrorCode() with the engine of this project. Append-only: a number keeps its meaning for good.
/// The last error is that of the instance's latest library call; a call that succeeds sets it to 0.
enum LibraryErrorCode : int {
  kErrorNone = 0,              ///< the last call succeeded
  kErrorUnknownInstance = 1,   ///< no library instance has this ID
  kErrorNotSupported = 2,      ///< the engine does not implement this function
  kErrorBadBuffer = 3,         ///< the buffer is unknown, released already or was not filled as announced
  kErrorNoDocument = 4,        ///< no document is selected, or no document has this ID
  kErrorBadArgument = 5,       ///< an argument is out of its range
  kErrorOutOfMemory = 6,       ///< memory ran out
  kErrorInternal = 7,          ///< an unexpected failure inside the engine
  kErrorBackendMissing = 8,    ///< the engine's backend module is not in the engine's folder or cannot be loaded
  kErrorFileNotFound = 100,    ///< the file, or a folder of its path, does not exist
  kErrorFileUnreadable = 101,  ///< the file exists but cannot be read (rights, a folder, a device error)
  kErrorNotPdf = 102,          ///< the file holds no PDF
  kErrorDamaged = 103,         ///< the PDF is damaged beyond repair
  kErrorPasswordNeeded = 104,  ///< the document is encrypted and no password was given
  kErrorPasswordWrong = 105,   ///< the document is encrypted and the password opens it neither as user nor as owner
  kErrorUnsupportedSecurity = 106,  ///< the document uses a security handler that the engine does not have
  kErrorFileTooLarge = 107,         ///< the document is larger than this call can handle
  kErrorSourceChanged = 108,        ///< the loaded file changed, shrank or vanished before it was saved
  kErrorCannotAppend = 109,         ///< no update could be appended to a signed document; a second try rewrites it
  kErrorCannotWrite = 200,  ///< the target cannot be created (rights, a read-only file system, a folder in its place)
  kErrorDiskFull = 201,     ///< no space is left, or a quota is used up
};
