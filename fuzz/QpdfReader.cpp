// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <qpdf/Pl_String.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <set>

#include "fuzz/Readers.h"

namespace {

std::string ContentsOf(QPDFObjectHandle page) {
  std::string contents;
  Pl_String buffer("contents", nullptr, contents);
  try {
    page.pipePageContents(&buffer);
  } catch (const std::exception&) {
    // What was decoded up to here.
  }
  return contents;
}

// The number of objects that are not null and that the catalog leads to. The base URL does not count, nor do lengths of
// streams, which a rewrite has in place.
std::uint64_t CountReached(QPDFObjectHandle root) {
  std::set<QPDFObjGen> seen;
  std::uint64_t count = 0;
  std::vector<QPDFObjectHandle> open;
  const auto visit = [&](QPDFObjectHandle object) {
    if (object.isIndirect()) {
      if (!seen.insert(object.getObjGen()).second || object.isNull()) return;
      ++count;
    }
    if (object.isArray() || object.isDictionary() || object.isStream()) open.push_back(object);
  };
  open.push_back(root);
  // As viewers do: the first wrong entry makes the library rebuild the cross-references, which may lose the pages.
  visit(root.getKey("/Pages"));
  while (!open.empty()) {
    QPDFObjectHandle object = open.back();
    open.pop_back();
    if (object.isArray()) {
      for (const QPDFObjectHandle& item : object.aitems()) visit(item);
      continue;
    }
    QPDFObjectHandle dictionary = object.isStream() ? object.getDict() : object;
    // In the place of another object, a cross-reference stream would lead to the whole document.
    if (object.isStream() && dictionary.isDictionaryOfType("/XRef")) continue;
    for (const auto& [key, value] : dictionary.ditems()) {
      // The library invents keys for values without one.
      const bool invented = key.compare(0, 9, "/QPDFFake") == 0;
      if (key == "/URI" && object.getObjGen() == root.getObjGen()) continue;
      if (!invented && key != "/Length") visit(value);
    }
  }
  return count;
}

void ReadPlainObjects(QPDF& pdf) {
  constexpr int kInFile = 1;
  for (const auto& [id, entry] : pdf.getXRefTable()) {
    if (entry.getType() == kInFile) pdf.getObject(id).isNull();
  }
}

Reading Read(const std::string& file, bool plainFirst) {
  Reading reading;
  try {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    pdf.processFile(file.c_str());
    if (plainFirst) ReadPlainObjects(pdf);
    QPDFObjectHandle root = pdf.getRoot();
    // Counted first: asking for the pages mends the page tree.
    reading.objects = CountReached(root);
    QPDFObjectHandle uri = root.getKey("/URI");
    QPDFObjectHandle base = uri.isDictionary() ? uri.getKey("/Base") : QPDFObjectHandle::newNull();
    if (base.isString()) reading.baseUrl = base.getStringValue();
    const auto& pages = pdf.getAllPages();
    reading.pageCount = pages.size();
    for (std::size_t page = 0; page < std::min(pages.size(), kMaxPagesRead); ++page) {
      std::string content = ContentsOf(pages[page]);
      std::string tokens = Words(content);
      reading.pages.push_back({std::move(content), std::move(tokens), 0});
    }
    for (const QPDFExc& warning : pdf.getWarnings()) {
      const std::string text = warning.getMessageDetail();
      if (text.find("unknown encryption filter for strings") != std::string::npos) reading.doubtfulStrings = true;
    }
    reading.opened = true;
  } catch (const std::exception&) {
    // Not opened.
  }
  return reading;
}

}  // namespace

Reading ReadWithQpdf(const std::string& file) {
  return Read(file, false);
}

Reading ReadWithQpdfPlainFirst(const std::string& file) {
  return Read(file, true);
}
