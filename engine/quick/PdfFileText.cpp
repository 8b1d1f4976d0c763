// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/PdfFileText.h"

#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

constexpr std::uint64_t kMostRead = 64 * 1024 * 1024;

}  // namespace

PdfFileText::PdfFileText(const InputFile& file, std::uint64_t headerOffset)
    : file_(file), headerOffset_(headerOffset), readBefore_(file.BytesRead()) {
  if (headerOffset > file.Size()) throw PdfSyntaxError();
}

std::string_view PdfFileText::View(std::uint64_t offset, std::size_t count, std::string& storage) const {
  if (offset > Size() || file_.BytesRead() - readBefore_ > kMostRead) throw PdfSyntaxError();
  return file_.ViewAt(headerOffset_ + offset, count, storage);
}

PdfFileText::Object PdfFileText::ReadObject(std::uint64_t offset) const {
  return ParseAt(offset, [offset](std::string_view text) {
    PdfLexer lexer(text);
    const ObjectId id = lexer.ReadObjectHeader();
    lexer.SkipSpace();
    const RawDictionary dictionary(text.substr(lexer.Position()));
    lexer = PdfLexer(text, lexer.Position() + dictionary.Text().size());
    lexer.SkipSpace();
    Object object{id, dictionary.Kept()};
    if (lexer.Accept("endobj")) return object;
    lexer.Expect("stream");
    const std::size_t end = lexer.Position();
    if (text.size() - end < 2) throw PdfSyntaxError(true);
    if (text[end] == '\n') {
      object.dataOffset = offset + end + 1;
    } else if (text.compare(end, 2, "\r\n") == 0) {
      object.dataOffset = offset + end + 2;
    } else {
      throw PdfSyntaxError();
    }
    return object;
  });
}

PdfFileText::Trailer PdfFileText::ReadTrailer(std::uint64_t offset) const {
  return ParseAt(offset, [offset](std::string_view text) {
    PdfLexer lexer(text);
    lexer.Expect("trailer");
    lexer.SkipSpace();
    const RawDictionary dictionary(text.substr(lexer.Position()));
    return Trailer{dictionary.Kept(), offset + lexer.Position() + dictionary.Text().size()};
  });
}

void PdfFileText::CheckObject(std::uint64_t offset, ObjectId id) const {
  std::string storage;
  const std::string_view text = View(offset, 64, storage);
  PdfLexer lexer(text);
  if (lexer.ReadObjectHeader() != id) throw PdfSyntaxError();
  lexer.SkipSpace();
  if (text.compare(lexer.Position(), 2, "<<") != 0) throw PdfSyntaxError();
}

void PdfFileText::CheckStreamEnd(const Object& object, std::uint64_t length) const {
  if (object.dataOffset == 0 || length > Size()) throw PdfSyntaxError();
  const std::string text = Read(object.dataOffset + length, 32);
  PdfLexer lexer(text);
  lexer.SkipSpace();
  lexer.Expect("endstream");
}

}  // namespace engine
