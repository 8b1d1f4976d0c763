// SPDX-License-Identifier: Apache-2.0
#include "engine/document/DocumentProperties.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "engine/base/EngineError.h"
#include "engine/document/LoadedFile.h"
#include "engine/quick/BaseUrl.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/LiteralString.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/TextString.h"

namespace engine {

namespace {

constexpr char kRoot[] = "/Root";
constexpr char kInfo[] = "/Info";
constexpr char kUri[] = "/URI";
constexpr char kBase[] = "/Base";
constexpr char kVersion[] = "/Version";
constexpr std::size_t kHeaderSearch = 1024;  // where readers look for the header

std::optional<ObjectId> ReferenceIn(std::string_view value) {
  // A direct dictionary or string is the usual case, and an exception costs as much as reading the whole catalog.
  if (!value.empty() && (value[0] == '<' || value[0] == '(')) return std::nullopt;
  try {
    return PdfLexer::ToReference(value);
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

// The objects of a file with its edits.
class EditedFile {
 public:
  EditedFile(LoadedFile& file, const Edits& edits) : file_(file), edits_(edits) {}

  std::string TrailerValue(const std::string& key) const {
    const std::string* const edited = edits_.FindTrailer(key);
    return edited != nullptr ? *edited : file_.TrailerValue(key);
  }
  // The text of a value, or of the object that it refers to. Empty for a stream.
  std::string Resolve(std::string_view value) const {
    const std::optional<ObjectId> id = ReferenceIn(value);
    if (!id) return std::string(value);
    const std::string* const edited = edits_.Find(*id);
    return edited != nullptr ? *edited : file_.ObjectText(*id).value_or("");
  }
  // A dictionary that the trailer names; an empty one when there is none.
  DictionaryText Dictionary(const std::string& trailerKey) const {
    return DictionaryText::Parse(Resolve(TrailerValue(trailerKey))).value_or(DictionaryText());
  }
  // The bytes of a string entry; nothing for anything else.
  std::optional<std::string> FindString(const DictionaryText& dictionary, const std::string& key) const {
    const std::optional<std::string_view> value = dictionary.Find(key);
    if (!value) return std::nullopt;
    const std::string text = Resolve(*value);
    const bool isString = !text.empty() && (text[0] == '(' || (text[0] == '<' && text.compare(0, 2, "<<") != 0));
    return isString ? std::optional(PdfLexer::ToBytes(text)) : std::nullopt;
  }
  std::string String(const DictionaryText& dictionary, const std::string& key) const {
    return FindString(dictionary, key).value_or("");
  }
  // The base URL's dictionary in a catalog; an empty one when there is none.
  DictionaryText Uri(const DictionaryText& catalog) const {
    const std::optional<std::string_view> uri = catalog.Find(kUri);
    return uri ? DictionaryText::Parse(Resolve(*uri)).value_or(DictionaryText()) : DictionaryText();
  }

 private:
  LoadedFile& file_;
  const Edits& edits_;
};

// The version that follows the mark, "1.7"; empty when it does not read so.
std::string VersionAfter(std::string_view text, std::string_view mark) {
  const std::size_t at = text.find(mark);
  if (at == std::string_view::npos) return {};
  const std::string_view version = text.substr(at + mark.size(), 3);
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  const bool valid = version.size() == 3 && isDigit(version[0]) && version[1] == '.' && isDigit(version[2]);
  return valid ? std::string(version) : std::string();
}

// Gives the entry of `dictionary` the value that it has in `stored`.
void Restore(DictionaryText& dictionary, const std::string& key, const DictionaryText& stored) {
  if (const std::optional<std::string_view> value = stored.Find(key)) {
    dictionary.Set(key, std::string(*value));
  } else {
    dictionary.Remove(key);
  }
}

// Edits the dictionary that the trailer names; one that is not an object of its own becomes one.
void SetDictionary(LoadedFile& file, Edits& edits, const std::string& trailerKey, const DictionaryText& dictionary) {
  const EditedFile edited(file, edits);
  const std::string value = edited.TrailerValue(trailerKey);
  std::optional<ObjectId> id = ReferenceIn(value);
  if (id && !DictionaryText::Parse(edited.Resolve(value))) id.reset();
  const Edits none;
  if (dictionary.SameEntries(EditedFile(file, none).Dictionary(trailerKey))) {
    if (id) edits.Reset(*id);
    edits.ResetTrailer(trailerKey);
    return;
  }
  // A catalog that cannot be read is not replaced by one without pages.
  if (!id && trailerKey == kRoot && dictionary.Find("/Pages") == std::nullopt) {
    throw EngineError(kErrorDamaged, "the catalog cannot be read");
  }
  if (!id) {
    id = ObjectId{edits.NextNumber(file.FirstFreeNumber()), 0};
    edits.SetTrailer(trailerKey, id->Reference());
  }
  edits.Set(*id, dictionary.Text());
}

}  // namespace

std::string BaseUrlOf(LoadedFile& file, const Edits& edits) {
  const EditedFile edited(file, edits);
  return edited.String(edited.Uri(edited.Dictionary(kRoot)), kBase);
}

bool HasBaseUrl(LoadedFile& file, const Edits& edits) {
  const EditedFile edited(file, edits);
  return edited.FindString(edited.Uri(edited.Dictionary(kRoot)), kBase).has_value();
}

std::string PdfVersionOf(LoadedFile& file, const Edits& edits) {
  const std::string header = VersionAfter(file.Source().ReadAt(0, kHeaderSearch), "%PDF-");
  const EditedFile edited(file, edits);
  const DictionaryText catalog = edited.Dictionary(kRoot);
  const std::optional<std::string_view> entry = catalog.Find(kVersion);
  return std::max(header, entry ? VersionAfter(edited.Resolve(*entry), "/") : std::string());
}

void SetBaseUrl(LoadedFile& file, Edits& edits, const std::string& url) {
  const EditedFile edited(file, edits);
  const Edits none;
  DictionaryText catalog = edited.Dictionary(kRoot);
  if (url == BaseUrlOf(file, none)) {
    Restore(catalog, kUri, EditedFile(file, none).Dictionary(kRoot));
  } else {
    // An object that /URI refers to may serve others as well: the catalog gets a copy.
    if (const auto uri = catalog.Find(kUri); uri && ReferenceIn(*uri)) catalog.Set(kUri, edited.Uri(catalog).Text());
    catalog = DictionaryText(WithBaseUrl(catalog.Text(), url));
  }
  SetDictionary(file, edits, kRoot, catalog);
}

std::string InformationOf(LoadedFile& file, const Edits& edits, const std::string& key) {
  const EditedFile edited(file, edits);
  return Utf8FromTextString(edited.String(edited.Dictionary(kInfo), '/' + key));
}

void SetInformation(LoadedFile& file, Edits& edits, const std::string& key, const std::string& value) {
  const Edits none;
  DictionaryText information = EditedFile(file, edits).Dictionary(kInfo);
  if (value == InformationOf(file, none, key)) {
    Restore(information, '/' + key, EditedFile(file, none).Dictionary(kInfo));
  } else if (value.empty()) {
    information.Remove('/' + key);
  } else {
    information.Set('/' + key, LiteralString(TextStringFromUtf8(value)));
  }
  SetDictionary(file, edits, kInfo, information);
}

}  // namespace engine
