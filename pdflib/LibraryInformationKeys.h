// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

/// The keys of GetInformation() and SetInformation() as the engine of this project reads them. Append-only: a number
/// keeps its meaning for good.
///
/// The first eight are entries of the document information dictionary (ISO 32000-2, 14.3.3); setting an empty text
/// removes one. Those from 1000 on are facts, which cannot be set, except kInformationWarnings; a library that does not
/// have them returns an empty text.
enum LibraryInformationKey : int {
  kInformationAuthor = 1,            ///< /Author
  kInformationTitle = 2,             ///< /Title
  kInformationSubject = 3,           ///< /Subject
  kInformationKeywords = 4,          ///< /Keywords
  kInformationCreator = 5,           ///< /Creator
  kInformationProducer = 6,          ///< /Producer
  kInformationCreationDate = 7,      ///< /CreationDate, as it is in the file: "D:20260102030405Z"
  kInformationModDate = 8,           ///< /ModDate, in the same form
  kInformationSaveMode = 1000,       ///< how a save would be written now: "unchanged", "incremental" or "rewrite"
  kInformationWhyRewrite = 1001,     ///< why it would be a rewrite; else empty
  kInformationSignatures = 1002,     ///< the number of signed signature fields
  kInformationCertification = 1003,  ///< "1", "2" or "3", the /P of DocMDP (ISO 32000-2, 12.8.2.2); else empty
  kInformationLastSaveMode = 1004,   ///< how the last save was written, in the words of kInformationSaveMode
  kInformationHasBaseUrl = 1005,     ///< "1" when the document has a base URL, also an empty one, else "0"
  kInformationPdfVersion = 1006,    ///< the PDF version, as in "1.7" (ISO 32000-2, 7.5.2 and 7.7.2); empty when unknown
  kInformationWarnings = 1007,      ///< an action's warnings about the document, a line each; can be set, is not stored
  kInformationBaseUrlBytes = 1008,  ///< the bytes of the base URL as it is in the file, one character each
  /// Why the call before this one failed, in English, where more is known than its error code; else empty. Needs no
  /// document and leaves the last error as it is.
  kInformationWhyFailed = 1009,
  /// Plus the ID of an action: the bytes of its URI as it is in the file, one character each; empty for other actions.
  kInformationActionUriBytes = 1 << 30
};
