// SPDX-License-Identifier: Apache-2.0
#include <poppler/Error.h>
#include <poppler/GlobalParams.h>
#include <poppler/Page.h>
#include <poppler/PDFDoc.h>
#include <poppler/TextOutputDev.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <set>

#include "fuzz/Readers.h"

namespace {

void Append(void* all, const char* text, int length) {
  static_cast<std::string*>(all)->append(text, static_cast<std::size_t>(length));
}

void AppendStream(const Object& object, std::string& all) {
  if (!object.isStream()) return;
  Stream* const stream = object.getStream();
  stream->reset();
  for (int c = stream->getChar(); c != EOF; c = stream->getChar()) all.push_back(static_cast<char>(c));
  stream->close();
  all.push_back('\n');
}

std::string ContentOf(PDFDoc& document, int number) {
  Page* const page = document.getPage(number);
  if (page == nullptr) return {};
  std::string all;
  const Object contents = page->getContents();
  if (!contents.isArray()) AppendStream(contents, all);
  for (int i = 0; contents.isArray() && i < contents.arrayGetLength(); ++i) AppendStream(contents.arrayGet(i), all);
  return all;
}

// All that a value consists of, streams decoded; what other objects lead to, once.
void AppendValue(const Object& value, XRef* xref, std::set<int>& seen, std::string& all) {
  if (value.isRef()) {
    if (seen.insert(value.getRefNum()).second) AppendValue(value.fetch(xref), xref, seen, all);
    return;
  }
  if (value.isStream()) AppendStream(value, all);
  if (value.isDict() || value.isStream()) {
    const Dict* const dictionary = value.isDict() ? value.getDict() : value.streamGetDict();
    for (int i = 0; i < dictionary->getLength(); ++i) {
      if (std::strcmp(dictionary->getKey(i), "Length") == 0) continue;
      all += dictionary->getKey(i);
      AppendValue(dictionary->getValNF(i), xref, seen, all);
    }
  } else if (value.isArray()) {
    for (int i = 0; i < value.arrayGetLength(); ++i) AppendValue(value.arrayGetNF(i), xref, seen, all);
  } else if (value.isNum()) {
    all += std::to_string(value.getNum()) + ' ';
  } else if (value.isName()) {
    all += value.getName();
  } else if (value.isString()) {
    all += value.getString()->toStr();
  }
}

std::size_t FontsOf(PDFDoc& document, int number) {
  Page* const page = document.getPage(number);
  Dict* const resources = page != nullptr ? page->getResourceDict() : nullptr;
  if (resources == nullptr) return 0;
  std::string all;
  std::set<int> seen;
  AppendValue(resources->lookupNF("Font"), document.getXRef(), seen, all);
  return std::hash<std::string>()(all);
}

std::string TextOf(PDFDoc& document, int number) {
  std::string text;
  TextOutputDev device(Append, &text, false, 0, false);
  document.displayPage(&device, number, 72, 72, 0, true, false, false);
  return Words(text);
}

std::set<std::string>& MessagesOfMissing() {
  static std::set<std::string> messages;
  return messages;
}

void NoteMissing(ErrorCategory, Goffset, const char* message) {
  if (std::strstr(message, "Invalid XRef entry") != nullptr) MessagesOfMissing().insert(message);
}

}  // namespace

Reading ReadWithPoppler(const std::string& file) {
  setErrorCallback(NoteMissing);
  if (!globalParams) globalParams = std::make_unique<GlobalParams>();
  PDFDoc document(std::make_unique<GooString>(file));
  Reading reading;
  reading.opened = document.isOk();
  if (!reading.opened) return reading;
  reading.pageCount = static_cast<std::uint64_t>(std::max(0, document.getNumPages()));
  for (int page = 1; page <= static_cast<int>(std::min<std::uint64_t>(reading.pageCount, kMaxPagesRead)); ++page) {
    std::string text = TextOf(document, page);
    reading.pages.push_back({std::move(text), Words(ContentOf(document, page)), FontsOf(document, page)});
  }
  reading.notFound = MessagesOfMissing().size();
  return reading;
}
