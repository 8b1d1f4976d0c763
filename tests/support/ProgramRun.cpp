// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ProgramRun.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include "host/base/NativeName.h"
#include "tests/support/PdfFile.h"

namespace {

// Leads a process group, so that a test can signal the program with its workers.
class GroupLeader : public QProcess {
 protected:
  void setupChildProcess() override { setpgid(0, 0); }
};

}  // namespace

void PrepareToRun() {
  NativeName::InstallAsLocale();
#ifdef __SANITIZE_ADDRESS__
  // The sanitizer's dlopen() does not search the caller's run path.
  qputenv("LD_LIBRARY_PATH", QFileInfo(HALVEXENGINE_FILE).path().toLocal8Bit());
#endif
}

std::unique_ptr<QProcess> StartProgram(const QStringList& arguments) {
  PrepareToRun();
  std::unique_ptr<QProcess> process = std::make_unique<GroupLeader>();
  process->start(QStringLiteral(VORLANE_RUN_FILE), arguments);
  EXPECT_TRUE(process->waitForStarted());
  return process;
}

ProgramResult FinishProgram(QProcess& process, const QByteArray& input) {
  process.write(input);
  process.closeWriteChannel();
  EXPECT_TRUE(process.waitForFinished(200000)) << "it hangs";
  ProgramResult result;
  result.code = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : 128 + process.exitCode();
  result.out = process.readAllStandardOutput();
  result.err = process.readAllStandardError();
  return result;
}

ProgramResult RunProgram(const QStringList& arguments, const QByteArray& input) {
  const std::unique_ptr<QProcess> process = StartProgram(arguments);
  return FinishProgram(*process, input);
}

void WaitForLines(const QString& file, int lines) {
  for (int i = 0; i < 40000 && QByteArray::fromStdString(ReadText(file)).count('\n') < lines; ++i) usleep(5000);
}

QStringList ProbeRun(const QStringList& more) {
  return QStringList{"run",   "--tools-dir", QFileInfo(PROBEACTION_FILE).path(), "--action",
                     "Probe", "--set",       "baseUrlString=http://new/"} +
         more;
}

QByteArray MakePdf(const QByteArray& catalog, const QList<QByteArray>& objects, const QByteArray& page) {
  PlainPdf pdf{catalog.toStdString(), page.toStdString(), {}, {}};
  for (const QByteArray& object : objects) pdf.more.push_back(object.toStdString());
  return QByteArray::fromStdString(pdf.Bytes());
}

QByteArray MakeSignedPdf(int certification) {
  QByteArray catalog = "/AcroForm<</SigFlags 3/Fields[4 0 R]>>";
  QByteArray signature =
      "<</Type/Sig/Filter/Adobe.PPKLite/SubFilter/adbe.pkcs7.detached/ByteRange[0 1 2 3]/Contents<00>";
  if (certification > 0) {
    catalog += "/Perms<</DocMDP 5 0 R>>";
    signature += "/Reference[<</Type/SigRef/TransformMethod/DocMDP/TransformParams<</Type/TransformParams/V/1.2/P " +
                 QByteArray::number(certification) + ">>>>]";
  }
  return MakePdf(catalog,
                 {"<</FT/Sig/T(s)/Type/Annot/Subtype/Widget/Rect[0 0 0 0]/P 3 0 R/V 5 0 R>>", signature + ">>"});
}

QByteArray BreakXref(const QByteArray& pdf) {
  return QByteArray::fromStdString(WithBrokenXref(pdf.toStdString()));
}

QMap<QString, QJsonObject> ReadReport(const QByteArray& report) {
  QMap<QString, QJsonObject> records;
  const QJsonDocument array = QJsonDocument::fromJson(report);
  if (array.isArray()) {
    for (const QJsonValue value : array.array()) records[value["file"].toString()] = value.toObject();
    return records;
  }
  for (const QByteArray& line : report.split('\n')) {
    if (line.isEmpty()) continue;
    const QJsonObject record = QJsonDocument::fromJson(line).object();
    EXPECT_FALSE(record.isEmpty()) << line.toStdString();
    records[record["file"].toString()] = record;
  }
  return records;
}

QByteArray BaseUrlOf(const QString& file) {
  QProcess mutool;
  mutool.start("mutool", {"show", file, "trailer/Root/URI/Base"});
  EXPECT_TRUE(mutool.waitForFinished(-1));
  QByteArray url = mutool.readAllStandardOutput().trimmed();
  return url == "null" ? QByteArray() : url.mid(1, url.size() - 2);
}
