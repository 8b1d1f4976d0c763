// SPDX-License-Identifier: Apache-2.0
#include "host/run/ResumedReport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/base/CommandError.h"
#include "host/base/NativeName.h"

namespace {

// NUL is in no file name.
std::string Key(std::string_view file, std::string_view output) {
  std::string key(file);
  key += '\0';
  key += output;
  return key;
}

}  // namespace

ResumedReport::ResumedReport(const std::string& reportFile, const std::function<void(const QByteArray&)>& each) {
  const QString name = NativeName::ToText(reportFile);
  QFile file(name);
  if (!file.open(QIODevice::ReadOnly)) {
    throw CommandError(kExitUsage, QStringLiteral("Cannot read the report '%1': %2").arg(name, file.errorString()));
  }
  // One record a line is how reports are written, so that even a long one is read in little memory.
  QByteArray firstText;
  bool anyRecord = false;
  while (!file.atEnd()) {
    QByteArray line = file.readLine().trimmed();
    if (line.endsWith(',')) line.chop(1);
    if (line.isEmpty() || line == "[" || line == "]") continue;
    if (firstText.isEmpty()) firstText = line.left(1);
    anyRecord = Take(line, each) || anyRecord;
  }
  // Nothing at all, or nothing but the line that the crash cut off.
  if (anyRecord || firstText.isEmpty()) return;

  // A report that another program has laid out anew.
  file.seek(0);
  const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
  for (const QJsonValue value : document.array()) {
    Take(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact), each);
  }
  if (!document.isArray() && firstText != "{") {
    throw CommandError(kExitUsage, QStringLiteral("'%1' is not a report.").arg(name));
  }
}

bool ResumedReport::Take(const QByteArray& json, const std::function<void(const QByteArray&)>& each) {
  const QJsonObject record = QJsonDocument::fromJson(json).object();
  const QJsonValue file = record.value(QLatin1String("file"));
  const QJsonValue status = record.value(QLatin1String("status"));
  if (!file.isString() || !status.isString()) return false;
  if (status.toString() != QLatin1String("done")) return true;
  const QString output = record.value(QLatin1String("output")).toString();
  const bool isNew =
      done_.insert(Key(NativeName::ToBytes(file.toString()).toStdString(), NativeName::ToBytes(output).toStdString()))
          .second;
  if (isNew) each(json);
  return true;
}

bool ResumedReport::Done(const std::string& file, const std::string& output) const {
  return !done_.empty() && done_.count(Key(file, output)) != 0;
}
