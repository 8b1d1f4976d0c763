// SPDX-License-Identifier: Apache-2.0
#include "tests/engine/quick/FullParser.h"

#include <exception>
#include <qpdf/QPDF.hh>

namespace {

// A value of /URI or /Base of another type counts as missing.
std::string BaseUrlOf(QPDFObjectHandle catalog) {
  QPDFObjectHandle uri = catalog.getKey("/URI");
  if (!uri.isDictionary()) return {};
  QPDFObjectHandle base = uri.getKey("/Base");
  return base.isString() ? base.getStringValue() : std::string();
}

}  // namespace

std::optional<FullParser> FullParser::Read(const std::string& bytes) {
  try {
    QPDF pdf;
    pdf.setSuppressWarnings(true);
    pdf.processMemoryFile("test.pdf", bytes.data(), bytes.size());
    FullParser result;
    QPDFObjectHandle root = pdf.getTrailer().getKey("/Root");
    result.root = {static_cast<std::uint32_t>(root.getObjectID()), static_cast<std::uint32_t>(root.getGeneration())};
    result.baseUrl = BaseUrlOf(pdf.getRoot());
    result.pageCount = static_cast<int>(pdf.getAllPages().size());
    const auto warnings = pdf.getWarnings();
    if (!warnings.empty()) result.warning = warnings.front().what();
    return result;
  } catch (const std::exception&) {
    return std::nullopt;
  }
}
