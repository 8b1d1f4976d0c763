// SPDX-License-Identifier: Apache-2.0
#include "tests/host/ProbeAction.h"

#include <fcntl.h>
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

// Like a PDF library that hangs while it writes a temporary file that has a name.
[[noreturn]] void HangWithTemporaryFile() {
  [[maybe_unused]] const int file = open("out/.vorlane-0123456789abcdef.tmp", O_CREAT | O_WRONLY, 0600);
  for (;;) sleep(1000);
}

}  // namespace

int ProbeAction::PreSequenceProc(WorkProcInfoStruct* info) {
  Log(info, "pre " + std::to_string(getpid()));
  while (info->settings->contains(QStringLiteral("hang"))) sleep(1000);
  return 1;
}

int ProbeAction::PostSequenceProc(WorkProcInfoStruct* info) {
  Log(info, "post " + std::to_string(getpid()));
  return 1;
}

int ProbeAction::WorkProc(WorkProcInfoStruct* info) {
  const std::wstring file = info->document->GetDocumentFileName();
  const auto named = [&](const wchar_t* word) { return file.find(word) != std::wstring::npos; };
  // A setting that an earlier document added would show here.
  Log(info, info->settings->contains(QStringLiteral("used")) ? "work used" : "work fresh");
  info->settings->insert(QStringLiteral("used"), true);
  if (named(L"abort")) std::abort();
  if (named(L"exit")) std::exit(0);
  if (named(L"throw")) throw std::runtime_error("thrown on purpose");
  if (named(L"hang")) HangWithTemporaryFile();
  if (named(L"slow")) usleep(100000);
  for (int i = 0; i < 20 && named(L"steps"); ++i) usleep(25000);
  while (named(L"gate") && access("open", F_OK) != 0) usleep(5000);
  if (named(L"greedy")) mostTaken = std::max(mostTaken, std::vector<char>(300 << 20).size());
  QString url = info->settings->value(QStringLiteral("baseUrlString")).toString();
  if (url == QLatin1String("platform")) url = QGuiApplication::platformName();
  const bool adds = info->settings->contains(QStringLiteral("add"));
  info->document->SetBaseURL((adds ? info->document->GetBaseURL() : std::wstring()) + url.toStdWString());
  if (named(L"refused")) info->document->SelectDocument(-1);
  return 0;
}

// Accepts at once when "accept" is set; "context" and "document" hold what the dialog was given.
int ProbeAction::ShowDialogProc(QWidget* parent, DialogLoadStruct* info) {
  info->settings->insert(QStringLiteral("context"), parent != nullptr ? parent->objectName() : QStringLiteral("none"));
  const QString url = info->document != nullptr ? QString::fromStdWString(info->document->GetBaseURL()) : QString();
  info->settings->insert(QStringLiteral("document"), url);
  info->settings->insert(QStringLiteral("skip"), info->skipDocumentValue);
  return info->settings->contains(QStringLiteral("accept")) ? 1 : 0;
}
