// SPDX-License-Identifier: Apache-2.0
#include "engine/document/DocumentProperties.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "engine/base/EngineError.h"
#include "engine/document/LoadedFile.h"
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

const DictionaryText& OrEmpty(const LoadedFile::TrailerEntry& entry) {
  static const DictionaryText kEmpty;
  return entry.dictionary ? *entry.dictionary : kEmpty;
}

// The objects of a file with its edits.
class EditedFile {
 public:
  EditedFile(LoadedFile& file, const Edits& edits) : file_(file), edits_(edits) {}

  // The text of a value, or of the object that it refers to. Empty for a stream.
  std::string Resolve(std::string_view value) const {
    const std::optional<ObjectId> id = PdfLexer::FindReference(value);
    if (!id) return std::string(value);
    const std::string* const edited = edits_.Find(*id);
    return edited != nullptr ? *edited : file_.ObjectText(*id).value_or("");
  }
  // The dictionary that a value is or refers to.
  std::optional<DictionaryText> Dictionary(std::string_view value) const {
    return DictionaryText::Parse(Resolve(value));
  }
  // What the trailer names. Valid until the edits change.
  const LoadedFile::TrailerEntry& Named(const std::string& trailerKey) {
    const LoadedFile::TrailerEntry& stored = file_.Trailer(trailerKey);
    if (const std::string* const value = edits_.FindTrailer(trailerKey)) {
      return named_ = {PdfLexer::FindReference(*value), Dictionary(*value)};
    }
    const std::string* const text = stored.id ? edits_.Find(*stored.id) : nullptr;
    if (text == nullptr) return stored;
    return named_ = {stored.id, DictionaryText::Parse(*text)};
  }
  // The bytes of a string entry; nothing for anything else.
  std::optional<std::string> FindString(const DictionaryText& dictionary, std::string_view key) const {
    const std::optional<std::string_view> value = dictionary.Find(key);
    if (!value) return std::nullopt;
    const std::string text = Resolve(*value);
    const bool isString = !text.empty() && (text[0] == '(' || (text[0] == '<' && text.compare(0, 2, "<<") != 0));
    return isString ? std::optional(PdfLexer::ToBytes(text)) : std::nullopt;
  }
  std::string String(const DictionaryText& dictionary, std::string_view key) const {
    return FindString(dictionary, key).value_or("");
  }
  // The base URL's dictionary in a catalog; an empty one when there is none.
  DictionaryText Uri(const DictionaryText& catalog) const {
    const std::optional<std::string_view> value = catalog.Find(kUri);
    return value ? Dictionary(*value).value_or(DictionaryText()) : DictionaryText();
  }
  std::string BaseUrl(const DictionaryText& catalog) const { return String(Uri(catalog), kBase); }
  std::string Information(const DictionaryText& information, const std::string& entry) const {
    return Utf8FromTextString(String(information, entry));
  }

 private:
  LoadedFile& file_;
  const Edits& edits_;
  LoadedFile::TrailerEntry named_;
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

void SetOrRemove(DictionaryText& dictionary, std::string_view key, const std::optional<std::string>& value) {
  if (value) {
    dictionary.Set(key, *value);
  } else {
    dictionary.Remove(key);
  }
}

// Gives `entry` of the dictionary that the trailer names a new value. isAsStored(original, stored) returns whether the
// value is the one that the file, `original`, has in that dictionary, `stored`; otherwise newValue(edited, dictionary)
// returns its text, or nothing to remove the entry. A dictionary that is not an object of its own becomes one.
template <typename IsAsStored, typename NewValue>
void EditEntry(LoadedFile& file, Edits& edits, const std::string& trailerKey, const std::string& entry,
               IsAsStored isAsStored, NewValue newValue) {
  const Edits none;
  const EditedFile original(file, none);
  EditedFile edited(file, edits);
  const DictionaryText& stored = OrEmpty(file.Trailer(trailerKey));
  const LoadedFile::TrailerEntry& current = edited.Named(trailerKey);
  std::optional<ObjectId> id = current.dictionary ? current.id : std::nullopt;
  DictionaryText dictionary = OrEmpty(current);

  if (isAsStored(original, stored)) {
    SetOrRemove(dictionary, entry, std::optional<std::string>(stored.Find(entry)));
    if (dictionary.SameEntries(stored)) {
      if (id) edits.Reset(*id);
      edits.ResetTrailer(trailerKey);
      return;
    }
  } else {
    SetOrRemove(dictionary, entry, newValue(edited, dictionary));
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
  EditedFile edited(file, edits);
  return edited.BaseUrl(OrEmpty(edited.Named(kRoot)));
}

bool HasBaseUrl(LoadedFile& file, const Edits& edits) {
  EditedFile edited(file, edits);
  return edited.FindString(edited.Uri(OrEmpty(edited.Named(kRoot))), kBase).has_value();
}

std::string PdfVersionOf(LoadedFile& file, const Edits& edits) {
  const std::string header = VersionAfter(file.Source().ReadAt(0, kHeaderSearch), "%PDF-");
  EditedFile edited(file, edits);
  const std::optional<std::string_view> entry = OrEmpty(edited.Named(kRoot)).Find(kVersion);
  return std::max(header, entry ? VersionAfter(edited.Resolve(*entry), "/") : std::string());
}

void SetBaseUrl(LoadedFile& file, Edits& edits, const std::string& url) {
  EditEntry(
      file, edits, kRoot, kUri,
      [&](const EditedFile& original, const DictionaryText& stored) { return url == original.BaseUrl(stored); },
      [&](const EditedFile& edited, const DictionaryText& catalog) -> std::optional<std::string> {
        // An object that /URI refers to may serve others as well: the catalog gets a copy.
        DictionaryText uri = edited.Uri(catalog);
        SetOrRemove(uri, kBase, url.empty() ? std::nullopt : std::optional(LiteralString(url)));
        if (uri.Empty()) return std::nullopt;
        return uri.Text();
      });
}

std::string InformationOf(LoadedFile& file, const Edits& edits, const std::string& key) {
  EditedFile edited(file, edits);
  return edited.Information(OrEmpty(edited.Named(kInfo)), '/' + key);
}

void SetInformation(LoadedFile& file, Edits& edits, const std::string& key, const std::string& value) {
  const std::string entry = '/' + key;
  EditEntry(
      file, edits, kInfo, entry,
      [&](const EditedFile& original, const DictionaryText& stored) {
        return value == original.Information(stored, entry);
      },
      [&](const EditedFile&, const DictionaryText&) -> std::optional<std::string> {
        if (value.empty()) return std::nullopt;
        return LiteralString(TextStringFromUtf8(value));
      });
}

}  // namespace engine
