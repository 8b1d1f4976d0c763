// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/RawObjects.h"

#include <string_view>
#include <utility>

#include "engine/backend/StringCipher.h"
#include "engine/backend/XrefEntry.h"
#include "engine/quick/PdfFileText.h"
#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/LiteralString.h"
#include "engine/syntax/MapStrings.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

RawObjects::RawObjects(QPDF& document, const InputFile& file, std::uint64_t headerOffset)
    : document_(document), file_(file), headerOffset_(headerOffset), entries_(document.getXRefTable()) {}

std::optional<std::string> RawObjects::Text(ObjectId id) {
  const auto found = entries_.find(QPDFObjGen(static_cast<int>(id.number), static_cast<int>(id.generation)));
  if (found == entries_.end()) return std::nullopt;
  const QPDFXRefEntry& entry = found->second;
  try {
    std::optional<std::string> text;
    if (entry.getType() == kInStream) text = TextInStream(id, entry.getObjStreamNumber());
    if (entry.getType() == kInFile) text = TextInFile(id, static_cast<std::uint64_t>(entry.getOffset()));
    // Nor is a dictionary with a value too many plain syntax.
    if (text && text->compare(0, 2, "<<") == 0 && !DictionaryText::Parse(*text)) return std::nullopt;
    return text;
  } catch (const PdfSyntaxError&) {
    // Left to the parser.
  }
  return std::nullopt;
}

std::string RawObjects::TextInFile(ObjectId id, std::uint64_t offset) {
  std::string text = PdfFileText(file_, headerOffset_).ParseAt(offset, [&](std::string_view window) {
    PdfLexer lexer(window);
    if (lexer.ReadObjectHeader() != id) throw PdfSyntaxError();
    const PdfLexer::Value value = lexer.ReadValue();
    lexer.SkipSpace();
    lexer.Expect("endobj");
    return std::string(lexer.Text(value));
  });
  const StringCipher cipher = StringCipher::For(document_, id);
  if (!cipher.Encrypts()) return text;
  return MapStrings(text, [&](const std::string& bytes) {
    const std::optional<std::string> clear = cipher.Decrypt(bytes);
    if (!clear) throw PdfSyntaxError();
    return LiteralString(*clear);
  });
}

std::string RawObjects::TextInStream(ObjectId id, int stream) {
  if (stream != stream_) OpenStream(stream);
  const auto found = offsets_.find(id.number);
  if (found == offsets_.end() || found->second >= data_->getSize()) throw PdfSyntaxError();
  const std::string_view data(reinterpret_cast<const char*>(data_->getBuffer()), data_->getSize());
  PdfLexer lexer(data, static_cast<std::size_t>(found->second));
  return std::string(lexer.Text(lexer.ReadValue()));
}

void RawObjects::OpenStream(int number) {
  stream_ = 0;
  QPDFObjectHandle stream = document_.getObject(number, 0);
  if (!stream.isStream()) throw PdfSyntaxError();
  QPDFObjectHandle dictionary = stream.getDict();
  QPDFObjectHandle count = dictionary.getKey("/N");
  QPDFObjectHandle first = dictionary.getKey("/First");
  if (!count.isInteger() || !first.isInteger() || first.getIntValue() < 0) throw PdfSyntaxError();
  data_ = stream.getStreamData(qpdf_dl_generalized);
  offsets_.clear();
  PdfLexer lexer(std::string_view(reinterpret_cast<const char*>(data_->getBuffer()), data_->getSize()));
  for (long long i = 0; i < count.getIntValue(); ++i) {
    lexer.SkipSpace();
    const std::uint64_t objectNumber = lexer.ReadUnsigned();
    lexer.SkipSpace();
    offsets_[objectNumber] = static_cast<std::uint64_t>(first.getIntValue()) + lexer.ReadUnsigned();
  }
  stream_ = number;
}

}  // namespace engine
