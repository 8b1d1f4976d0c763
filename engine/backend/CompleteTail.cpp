// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/CompleteTail.h"

#include <qpdf/QPDFXRefEntry.hh>
#include <string>
#include <utility>
#include <vector>

#include "engine/backend/ObjectIds.h"
#include "engine/backend/ObjectWriter.h"
#include "engine/backend/PageSearch.h"
#include "engine/backend/XrefEntry.h"
#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

std::string Text(QPDFObjectHandle value) {
  return value.isIndirect() ? value.unparse() : ObjectWriter().Write(value);
}

}  // namespace

std::optional<FileTail> CompleteTail(QPDF& document, const InputFile& file) {
  FileTail tail;
  try {
    tail.root = PdfLexer::ToReference(Text(document.getTrailer().getKey("/Root")));
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
  tail.headerOffset = QuickReader::HeaderOffset(file);
  for (const std::string& key : document.getTrailer().getKeys()) {
    if (QuickReader::IsRepeatedEntry(key) && !IsInventedKey(key))
      tail.entries.push_back({NameText(key), Text(document.getTrailer().getKey(key))});
  }
  std::vector<FileTail::KeptObject> kept;
  for (const auto& [id, entry] : document.getXRefTable()) {
    FileTail::KeptObject object;
    object.id = IdOf(id);
    if (entry.getType() == kInFile && entry.getOffset() > 0) {
      object.offset = static_cast<std::uint64_t>(entry.getOffset());
    } else if (entry.getType() == kInStream) {
      object.stream = static_cast<std::uint32_t>(entry.getObjStreamNumber());
      object.index = static_cast<std::uint32_t>(entry.getObjStreamIndex());
    } else {
      continue;
    }
    if (!kept.empty() && kept.back().id.number == object.id.number) kept.pop_back();
    kept.push_back(object);
  }
  tail.size = kept.empty() ? 1 : kept.back().id.number + 1;
  tail.kept = std::move(kept);
  return tail;
}

}  // namespace engine
