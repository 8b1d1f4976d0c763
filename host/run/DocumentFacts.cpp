// SPDX-License-Identifier: Apache-2.0
#include "host/run/DocumentFacts.h"

#include <sys/stat.h>

#include <optional>

#include "host/base/JsonText.h"
#include "pdflib/LibraryErrorCodes.h"
#include "pdflib/LibraryInformationKeys.h"
#include "utils/DocumentLinks.h"
#include "utils/LinkTarget.h"

namespace {

constexpr char kNull[] = "null";

// In the order of the keys; each is a JSON value.
struct Facts {
  std::string file;
  std::string baseUrl = kNull;
  std::string pages = kNull;
  std::string pdfVersion = kNull;
  std::string encrypted = kNull;
  std::string signatures = kNull;
  std::string certification = kNull;
  std::string linearized = kNull;
  std::string size = kNull;
  std::string links = kNull;
  std::string saveMode = kNull;
  std::string error = kNull;

  std::string ToJson() const {
    return "{\"file\":" + file + ",\"baseUrl\":" + baseUrl + ",\"pages\":" + pages + ",\"pdfVersion\":" + pdfVersion +
           ",\"encrypted\":" + encrypted + ",\"signatures\":" + signatures + ",\"certification\":" + certification +
           ",\"linearized\":" + linearized + ",\"size\":" + size + ",\"links\":" + links + ",\"saveMode\":" + saveMode +
           ",\"error\":" + error + '}';
  }
};

std::string Text(const std::wstring& text) {
  std::string json;
  JsonText::Append(json, text);
  return json;
}

// Numbers and words of the library are answered as texts; an empty one means that there is none.
std::string TextOrNull(const std::wstring& answer) {
  return answer.empty() ? kNull : Text(answer);
}

std::string NumberOrNull(const std::wstring& answer) {
  return answer.empty() ? kNull : PdfLibrary::ToUtf8(answer);
}

// A result of 0 may mean that the call failed.
std::optional<int> Checked(PdfLibrary::Wrapper& library, int result) {
  return result == 0 && library.LastErrorCode() != 0 ? std::nullopt : std::optional(result);
}

std::string Number(std::optional<int> number) {
  return number ? std::to_string(*number) : kNull;
}

std::string BaseUrl(PdfLibrary::Wrapper& library) {
  const std::wstring url = library.GetBaseURL();
  const bool exists = !url.empty() || library.GetInformation(kInformationHasBaseUrl) == L"1";
  return exists ? Text(url) : kNull;
}

std::string Encryption(PdfLibrary::Wrapper& library) {
  if (library.EncryptionStatus() == 0) return kNull;
  const int algorithm = library.EncryptionAlgorithm();
  const int bits = library.EncryptionStrength();
  return std::string("{\"algorithm\":") +
         (algorithm == 1   ? "\"RC4\""
          : algorithm == 2 ? "\"AES\""
                           : kNull) +
         ",\"bits\":" + (bits > 0 ? std::to_string(bits) : kNull) + '}';
}

// Null rather than too few when a part of the document cannot be read.
std::string Links(PdfLibrary::Wrapper& library) {
  std::size_t total = 0;
  std::size_t relative = 0;
  const int error = VisitDocumentLinks(library, [&](const DocumentLink& link) {
    ++total;
    if (IsRelativeLink(link.uri)) ++relative;
  });
  if (error != 0) return kNull;
  return "{\"total\":" + std::to_string(total) + ",\"relative\":" + std::to_string(relative) + '}';
}

// How a save would be written once something has changed.
std::string SaveMode(PdfLibrary::Wrapper& library) {
  if (library.SetBaseURL(library.GetBaseURL() + L"x") == 0) return kNull;
  return TextOrNull(library.GetInformation(kInformationSaveMode));
}

// Null for what is not a regular file.
std::string SizeOf(const std::string& file) {
  struct stat status = {};
  const bool isFile = stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
  return isFile ? std::to_string(status.st_size) : kNull;
}

}  // namespace

std::string DocumentFacts::ToJson(PdfLibrary::Wrapper& library, const std::string& file) {
  Facts facts;
  facts.file = JsonText::OfBytes(file);
  facts.baseUrl = BaseUrl(library);
  facts.pages = Number(Checked(library, library.PageCount()));
  facts.pdfVersion = TextOrNull(library.GetInformation(kInformationPdfVersion));
  facts.encrypted = Encryption(library);
  facts.signatures = NumberOrNull(library.GetInformation(kInformationSignatures));
  facts.certification = NumberOrNull(library.GetInformation(kInformationCertification));
  if (const std::optional<int> linearized = Checked(library, library.IsLinearized())) {
    facts.linearized = *linearized == 1 ? "true" : "false";
  }
  facts.size = SizeOf(file);
  facts.links = Links(library);
  facts.saveMode = SaveMode(library);
  return facts.ToJson();
}

std::string DocumentFacts::ErrorToJson(const std::string& file, const std::string& error) {
  Facts facts;
  facts.file = JsonText::OfBytes(file);
  facts.size = SizeOf(file);
  for (const int code : {kErrorPasswordNeeded, kErrorPasswordWrong, kErrorUnsupportedSecurity}) {
    if (error == PdfLibrary::ErrorMessage(code)) facts.encrypted = R"({"algorithm":null,"bits":null})";
  }
  facts.error = JsonText::OfBytes(error);
  return facts.ToJson();
}
