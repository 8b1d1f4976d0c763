// SPDX-License-Identifier: Apache-2.0
#include "tests/host/ProbeAction.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <QFile>
#include <QGuiApplication>
#include <QWidget>
#include <stdexcept>
#include <vector>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/DialogLoadStruct.h"
#include "plugin/WorkProcInfoStruct.h"

namespace {

std::size_t mostTaken = 0;

void Log(const WorkProcInfoStruct* info, const std::string& line) {
  QFile file(info->settings->value(QStringLiteral("log")).toString());
  if (file.fileName().isEmpty() || !file.open(QIODevice::Append | QIODevice::Unbuffered)) return;
  file.write((line + '\n').c_str());
}

}  // namespace

int ProbeAction::PreSequenceProc(WorkProcInfoStruct* info) {
  Log(info, "pre " + std::to_string(getpid()));
  return 1;
}

int ProbeAction::PostSequenceProc(WorkProcInfoStruct* info) {
  Log(info, "post " + std::to_string(getpid()));
  return 1;
}

int ProbeAction::WorkProc(WorkProcInfoStruct* info) {
  const std::wstring file = info->document->GetDocumentFileName();
  const auto named = [&](const wchar_t* word) { return file.find(word) != std::wstring::npos; };
  // A setting that an earlier document left behind would show here.
  Log(info, info->settings->contains(QStringLiteral("used")) ? "work used" : "work fresh");
  info->settings->insert(QStringLiteral("used"), true);
  if (named(L"abort")) std::abort();
  if (named(L"exit")) std::exit(0);
  if (named(L"throw")) throw std::runtime_error("thrown on purpose");
  while (named(L"hang")) sleep(1000);
  if (named(L"slow")) usleep(100000);
  if (named(L"greedy")) mostTaken = std::max(mostTaken, std::vector<char>(300 << 20).size());
  QString url = info->settings->value(QStringLiteral("baseUrlString")).toString();
  if (url == QLatin1String("platform")) url = QGuiApplication::platformName();
  info->document->SetBaseURL(url.toStdWString());
  if (named(L"refused")) info->document->SelectDocument(-1);
  return 0;
}

// Accepts at once when "accept" is set; "context" and "document" tell what the dialog was given.
int ProbeAction::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  info->settings->insert(QStringLiteral("context"), parent != nullptr ? parent->objectName() : QStringLiteral("none"));
  const QString url = info->document != nullptr ? QString::fromStdWString(info->document->GetBaseURL()) : QString();
  info->settings->insert(QStringLiteral("document"), url);
  info->settings->insert(QStringLiteral("skip"), info->skipDocumentValue);
  return info->settings->contains(QStringLiteral("accept")) ? 1 : 0;
}
