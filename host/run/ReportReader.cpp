// SPDX-License-Identifier: Apache-2.0
#include "host/run/ReportReader.h"

#include <QBuffer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "host/base/CommandError.h"
#include "host/base/NamedInput.h"
#include "host/base/NativeName.h"

namespace {

// How every record begins. Inside a JSON string the quotes would be escaped.
constexpr char kRecordStart[] = "{\"file\":\"";

bool IsRecord(const QJsonObject& record) {
  static const QStringList kStatuses{QStringLiteral("done"), QStringLiteral("failed"), QStringLiteral("skipped"),
                                     QStringLiteral("would-change"), QStringLiteral("unchanged")};
  return record.value(QLatin1String("file")).isString() &&
         kStatuses.contains(record.value(QLatin1String("status")).toString());
}

class Reader {
 public:
  explicit Reader(const std::function<void(const QJsonObject&, const QByteArray&)>& each) : each_(each) {}

  // Reports have one record a line, so that even a long report is read in little memory.
  void ReadLines(QIODevice& device) {
    while (!device.atEnd()) {
      QByteArray line = device.readLine().trimmed();
      if (line.endsWith(',')) line.chop(1);
      if (first_.isEmpty()) first_ = line.left(1);
      if (!line.isEmpty() && line != "[" && line != "]") TakeLine(line);
    }
  }

  // A report that another program has laid out anew.
  bool ReadArray(QIODevice& device) {
    const QJsonDocument document = QJsonDocument::fromJson(device.readAll());
    for (const QJsonValue value : document.array()) {
      const QJsonObject record = value.toObject();
      if (!IsRecord(record)) return false;
      each_(record, QJsonDocument(record).toJson(QJsonDocument::Compact));
    }
    return document.isArray();
  }

  // Whether that was a report: one with records, an empty one, or one with only a line that a crash cut off.
  bool HasLines() const { return any_ || first_.isEmpty(); }
  bool MayBeTorn() const { return first_ == "{"; }
  std::size_t Torn() const { return torn_; }

 private:
  void TakeLine(const QByteArray& line) {
    if (Take(line)) return;
    ++torn_;
    const int start = line.lastIndexOf(kRecordStart);
    if (start > 0) Take(line.mid(start));
  }

  bool Take(const QByteArray& json) {
    const QJsonObject record = QJsonDocument::fromJson(json).object();
    if (!IsRecord(record)) return false;
    any_ = true;
    each_(record, json);
    return true;
  }

  const std::function<void(const QJsonObject&, const QByteArray&)>& each_;
  QByteArray first_;
  bool any_ = false;
  std::size_t torn_ = 0;
};

CommandError Unreadable(const std::string& name, const QString& why) {
  return {kExitUsage, QStringLiteral("Cannot read the report '%1': %2").arg(NativeName::ToText(name), why)};
}

}  // namespace

std::size_t ReadReport(const std::string& name,
                       const std::function<void(const QJsonObject& record, const QByteArray& json)>& each) {
  QFile file(NativeName::ToText(name));
  QByteArray input;
  QBuffer buffer(&input);
  if (name == "-") input = QByteArray::fromStdString(NamedInput::ReadAll(name, "report"));
  QIODevice& device = name == "-" ? static_cast<QIODevice&>(buffer) : file;
  if (!device.open(QIODevice::ReadOnly)) throw Unreadable(name, device.errorString());

  Reader reader(each);
  reader.ReadLines(device);
  if (file.error() != QFileDevice::NoError) throw Unreadable(name, file.errorString());
  if (reader.HasLines()) return reader.Torn();
  device.seek(0);
  if (reader.ReadArray(device)) return 0;
  if (reader.MayBeTorn()) return reader.Torn();
  throw CommandError(kExitUsage, QStringLiteral("'%1' is not a report.").arg(NativeName::ToText(name)));
}
