// SPDX-License-Identifier: Apache-2.0
#include "host/links/ListedLink.h"

#include <algorithm>
#include <QStringBuilder>
#include <utility>
#include <vector>

#include "host/base/Console.h"
#include "host/base/CsvText.h"
#include "host/base/JsonText.h"
#include "host/base/NativeName.h"
#include "utils/LinkTarget.h"

namespace {

constexpr int kPageColumn = 7;
constexpr int kLinkColumn = 32;
constexpr int kStartWidth = kPageColumn + 2 + kLinkColumn;
constexpr int kViewersColumn = 24;
constexpr std::array<const char*, ViewerRules::kViewers.size()> kViewerNames{"Firefox", "Chrome", "MuPDF", "Poppler"};

const char* KindName(DocumentLink::Kind kind) {
  switch (kind) {
    case DocumentLink::Kind::kOutline:
      return "outline";
    case DocumentLink::Kind::kField:
      return "field";
    case DocumentLink::Kind::kAnnotation:
      break;
  }
  return "annotation";
}

std::string Utf8(const QString& text) {
  return text.toUtf8().toStdString();
}

void AppendJson(std::string& json, const char* key, const std::optional<std::string>& text) {
  json += std::string(",\"") + key + "\":";
  if (text) {
    JsonText::AppendBytes(json, *text);
  } else {
    json += "null";
  }
}

std::optional<std::string> Text(const std::optional<QString>& text) {
  return text ? std::optional(Utf8(*text)) : std::nullopt;
}

std::optional<std::string> Text(const ViewerRules::Target& target) {
  return target ? std::optional(target->toStdString()) : std::nullopt;
}

// Bytes that are not UTF-8, and a byte order mark, are shown as escapes.
QByteArray Shown(const std::string& text) {
  if (text.empty()) return "(empty)";
  const bool isPlain = std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (isPlain) return QByteArray::fromStdString(text);
  QString shown;
  for (const wchar_t unit : NativeName::ToWide(text)) {
    const auto character = static_cast<char32_t>(unit);
    if (character >= 0xDC80 && character <= 0xDCFF) {
      shown += QStringLiteral("\\x%1").arg(QString::number(character - 0xDC00, 16).toUpper());
    } else if (character == 0xFEFF) {
      shown += QStringLiteral("\\uFEFF");
    } else {
      shown += QString::fromUcs4(&character, 1);
    }
  }
  return Console::OneLine(shown.toUtf8().toStdString());
}

QByteArray Page(const ListedLink& link) {
  const QByteArray page =
      link.link.page > 0 ? QByteArray::number(link.link.page) : QByteArray(KindName(link.link.kind));
  return page.rightJustified(kPageColumn);
}

// Page and link; what follows goes to the next line after a long one.
QByteArray Start(const ListedLink& link) {
  const QByteArray uri = Shown(Utf8(link.link.uri));
  const int width = QString::fromUtf8(uri).size();
  const QByteArray end =
      width > kLinkColumn ? '\n' + QByteArray(kStartWidth, ' ') : QByteArray(kLinkColumn - width, ' ');
  return Page(link) % "  " % uri % end;
}

// The places where viewers lead, each with the names of those viewers.
std::vector<std::pair<ViewerRules::Target, QByteArray>> ByTarget(const ViewerRules::Targets& viewers) {
  std::vector<std::pair<ViewerRules::Target, QByteArray>> groups;
  for (std::size_t i = 0; i < viewers.size(); ++i) {
    const auto same = std::find_if(groups.begin(), groups.end(), [&](const auto& g) { return g.first == viewers[i]; });
    if (same == groups.end()) {
      groups.emplace_back(viewers[i], kViewerNames[i]);
    } else {
      same->second += QByteArray(", ") + kViewerNames[i];
    }
  }
  return groups;
}

}  // namespace

ListedLink::ListedLink(const DocumentLink& found, const std::optional<LinkBase>& base)
    : link(found),
      relative(IsRelativeLink(found.uri)),
      target(ResolvedLink(base ? base->text : QString(), found.uri)),
      viewers(ViewerRules::All(found.bytes, base ? base->inViewers : ViewerRules::Base())),
      agree(ViewerRules::Agree(viewers)) {}

std::string LinkFormat::Json(const std::string& file, const ListedLink& link) {
  std::string json = "{\"file\":";
  JsonText::AppendBytes(json, file);
  json += ",\"page\":" + (link.link.page > 0 ? std::to_string(link.link.page) : "null");
  AppendJson(json, "kind", KindName(link.link.kind));
  AppendJson(json, "uri", Utf8(link.link.uri));
  AppendJson(json, "target", Text(link.target));
  json += ",\"viewers\":";
  std::string viewers;
  for (std::size_t i = 0; i < link.viewers.size(); ++i) {
    AppendJson(viewers, ViewerRules::kViewers[i], Text(link.viewers[i]));
  }
  viewers[0] = '{';
  return json + viewers + "},\"agree\":" + (link.agree ? "true" : "false") + "}\n";
}

std::string LinkFormat::CsvHeader() {
  std::string header = "file,page,kind,uri,target";
  for (const char* const viewer : ViewerRules::kViewers) header += std::string(",") + viewer;
  return header + ",agree\r\n";
}

std::string LinkFormat::Csv(const std::string& file, const ListedLink& link) {
  std::string record = CsvText::Field(file) + ',' + (link.link.page > 0 ? std::to_string(link.link.page) : "") + ',' +
                       KindName(link.link.kind) + ',' + CsvText::Field(Utf8(link.link.uri)) + ',' +
                       CsvText::Field(Text(link.target).value_or(""));
  for (const ViewerRules::Target& viewer : link.viewers) record += ',' + CsvText::Field(Text(viewer).value_or(""));
  return record + (link.agree ? ",true\r\n" : ",false\r\n");
}

std::string LinkFormat::Table(const ListedLink& link) {
  if (link.agree) {
    const QByteArray target = Shown(*Text(link.viewers[0]));
    const bool isItself = target == Shown(Utf8(link.link.uri));
    return (isItself ? Page(link) : Start(link))
        .append(isItself ? "  " : "   ")
        .append(target)
        .append('\n')
        .toStdString();
  }
  QByteArray text;
  for (const auto& [target, names] : ByTarget(link.viewers)) {
    text += text.isEmpty() ? Start(link) + " ! " : QByteArray(kStartWidth + 3, ' ');
    text += names.leftJustified(kViewersColumn) + ' ' +
            (target ? Shown(target->toStdString()) : QByteArray("no link")) + '\n';
  }
  return text.toStdString();
}

std::string LinkFormat::Missing(const ListedLink& link) {
  return (Start(link) + "   missing: " + Shown(Text(link.target).value_or("")) + '\n').toStdString();
}
