// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/QuickReader.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "engine/quick/ObjectFinder.h"
#include "engine/quick/PdfFileText.h"
#include "engine/quick/XrefChain.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

// Readers look for the header in so many bytes at the start, and for "startxref" in so many at the end.
constexpr std::size_t kHeaderWindow = 1024;
constexpr std::size_t kTailWindow = 1024;

template <typename Answer>
auto ValueOrNothing(Answer answer) -> std::optional<decltype(answer())> {
  try {
    return answer();
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

// "%PDF-1.7"
bool IsHeader(std::string_view text) {
  if (text.compare(0, 5, "%PDF-") != 0) return false;
  std::size_t i = 5;
  while (i < text.size() && PdfLexer::IsDigit(text[i])) ++i;
  return i > 5 && i + 1 < text.size() && text[i] == '.' && PdfLexer::IsDigit(text[i + 1]);
}

struct StartXref {
  std::uint64_t position;  // of the keyword
  std::uint64_t offset;    // the number after it
};

// The last "startxref". A file that ends right there is cut off, but can be continued.
StartXref ReadStartXref(const PdfFileText& file, bool endRequired) {
  const std::size_t window = static_cast<std::size_t>(std::min<std::uint64_t>(kTailWindow, file.Size()));
  std::string text;
  text.reserve(window + 1);
  std::string storage;
  text += file.View(file.Size() - window, window, storage);
  text += '\n';
  const std::size_t begin = text.rfind("startxref");
  if (begin == std::string::npos || begin == 0 || !PdfLexer::IsSpace(text[begin - 1])) throw PdfSyntaxError();
  PdfLexer lexer(text, begin);
  lexer.Expect("startxref");
  lexer.SkipSpace();
  const std::uint64_t offset = lexer.ReadUnsigned();
  std::size_t end = lexer.Position();
  while (end < text.size() && PdfLexer::IsSpace(text[end])) ++end;
  if (endRequired && text.compare(end, 5, "%%EOF") != 0) throw PdfSyntaxError();
  if (offset == 0) throw PdfSyntaxError();
  return {file.Size() - window + begin, offset};
}

// Throws unless one of the sections is right before "startxref", which may otherwise be the end of another document.
void CheckSectionAtEnd(const PdfFileText& file, const XrefChain& chain, std::uint64_t position) {
  std::uint64_t end = 0;
  for (const XrefChain::Link& link : chain.Links()) {
    const std::uint64_t own = std::max(link.section.End(), link.beside ? link.beside->End() : 0);
    if (own <= position) end = std::max(end, own);
  }
  if (end == 0) throw PdfSyntaxError();
  // Long white space is not read to its end.
  const auto gap = static_cast<std::size_t>(std::min<std::uint64_t>(position - end, kTailWindow));
  const std::string text = file.Read(end, gap) + "startxref ";
  PdfLexer lexer(text);
  do {
    lexer.SkipSpace();
  } while (lexer.Accept("endstream") || lexer.Accept("endobj"));
  if (lexer.Position() != gap) throw PdfSyntaxError();
}

FileTail MakeTail(const PdfFileText& file, std::uint64_t startXref, const XrefChain& chain) {
  const RawDictionary& trailer = chain.Last().Trailer();
  FileTail tail;
  tail.headerOffset = file.HeaderOffset();
  tail.startXref = startXref;
  if (chain.Last().IsStream()) tail.kind = FileTail::Kind::kStream;
  tail.hasStreams = std::any_of(chain.Links().begin(), chain.Links().end(),
                                [](const XrefChain::Link& link) { return link.section.IsStream() || link.beside; });
  const std::uint64_t size = trailer.Unsigned("/Size");
  if (size == 0 || size > QuickReader::kLargestSize) throw PdfSyntaxError();
  tail.size = static_cast<std::uint32_t>(size);
  tail.root = trailer.Reference("/Root");
  for (const RawDictionary::Entry& entry : trailer.Entries()) {
    if (QuickReader::IsRepeatedEntry(entry.key))
      tail.entries.push_back({std::string(entry.key), std::string(trailer.Text(entry))});
  }
  return tail;
}

QuickDocument ReadDocument(const InputFile& input) {
  std::string storage;
  if (!IsHeader(input.ViewAt(0, 16, storage))) throw PdfSyntaxError();
  const PdfFileText file(input);
  const auto [position, startXref] = ReadStartXref(file, true);
  const XrefChain chain(file, startXref);
  CheckSectionAtEnd(file, chain, position);
  QuickDocument document;
  document.tail = MakeTail(file, startXref, chain);
  if (document.tail.Encrypted()) throw PdfSyntaxError();

  const ObjectFinder finder(file, chain);
  finder.CheckEntries();
  const RawDictionary catalog = finder.ReadDictionary(document.tail.root);
  document.catalog = catalog.Text();
  if (catalog.Text("/Type") != "/Catalog") throw PdfSyntaxError();
  // Sections whose offsets or numbers are shifted show here, if not at the catalog itself.
  finder.CheckExists(catalog.Reference("/Pages"));
  document.hasAcroForm = catalog.Has("/AcroForm");
  document.hasPerms = catalog.Has("/Perms");
  return document;
}

FileTail ReadTailOf(const InputFile& input) {
  const PdfFileText file(input, QuickReader::HeaderOffset(input));
  const std::uint64_t startXref = ReadStartXref(file, false).offset;
  const XrefChain chain(file, startXref);
  return MakeTail(file, startXref, chain);
}

}  // namespace

std::optional<QuickDocument> QuickReader::Read(const InputFile& file) {
  return ValueOrNothing([&] { return ReadDocument(file); });
}

std::optional<FileTail> QuickReader::ReadTail(const InputFile& file) {
  return ValueOrNothing([&] { return ReadTailOf(file); });
}

std::uint64_t QuickReader::HeaderOffset(const InputFile& file) {
  const std::string text = file.ReadAt(0, kHeaderWindow + 16);
  for (std::size_t i = text.find('%'); i < kHeaderWindow; i = text.find('%', i + 1)) {
    if (IsHeader(std::string_view(text).substr(i))) return i;
  }
  return 0;
}

bool QuickReader::StartsWithHeader(const InputFile& file) {
  return IsHeader(file.ReadAt(0, 16));
}

bool QuickReader::IsRepeatedEntry(std::string_view key) {
  constexpr std::string_view kOwnToSection[] = {"/Size", "/Root",    "/Prev",         "/XRefStm", "/Type",
                                                "/W",    "/Index",   "/Length",       "/Filter",  "/DecodeParms",
                                                "/F",    "/FFilter", "/FDecodeParms", "/DL"};
  return std::find(std::begin(kOwnToSection), std::end(kOwnToSection), key) == std::end(kOwnToSection);
}

}  // namespace engine
