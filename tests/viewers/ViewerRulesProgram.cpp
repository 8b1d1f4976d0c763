// SPDX-License-Identifier: Apache-2.0
// Prints where the viewers lead by the rules: for each line "BASE URI" of the standard input one line with a word for
// each viewer. A word is "=" and hexadecimal digits, or "-" for nothing.
#include <iostream>
#include <string>

#include "host/links/ViewerRules.h"

namespace {

ViewerRules::Target Parsed(const std::string& word) {
  if (word == "-") return std::nullopt;
  return QByteArray::fromHex(QByteArray::fromStdString(word.substr(1)));
}

std::string Word(const ViewerRules::Target& target) {
  return target ? '=' + target->toHex().toStdString() : "-";
}

}  // namespace

int main() {
  std::string base;
  std::string uri;
  while (std::cin >> base >> uri) {
    const ViewerRules::Target from = Parsed(base);
    const QByteArray link = *Parsed(uri);
    std::cout << Word(ViewerRules::PdfJs(link, from)) << ' ' << Word(ViewerRules::Pdfium(link, from)) << ' '
              << Word(ViewerRules::MuPdf(link, from)) << ' ' << Word(ViewerRules::Poppler(link, from)) << '\n';
  }
}
