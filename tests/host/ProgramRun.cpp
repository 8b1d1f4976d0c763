// SPDX-License-Identifier: Apache-2.0
#include "tests/host/ProgramRun.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

#include "host/base/NativeName.h"

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
  // The sanitizer's dlopen() hides whose run path is to be searched.
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
  EXPECT_TRUE(process.waitForFinished(60000)) << "it hangs";
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

QStringList ProbeRun(const QStringList& more) {
  return QStringList{"run",   "--tools-dir", QFileInfo(PROBEACTION_FILE).path(), "--action",
                     "Probe", "--set",       "baseUrlString=http://new/"} +
         more;
}

void WriteFile(const QString& name, const QByteArray& content) {
  QFile file(name);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
  file.write(content);
}

QByteArray ReadFile(const QString& name) {
  QFile file(name);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
  return file.readAll();
}

QByteArray MakePdf(const QByteArray& catalog, const QList<QByteArray>& objects) {
  QList<QByteArray> all{"<</Type/Catalog/Pages 2 0 R" + catalog + ">>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 72 72]>>"};
  all += objects;
  QByteArray pdf = "%PDF-1.7\n";
  QByteArray table = "0000000000 65535 f \n";
  for (int i = 0; i < all.size(); ++i) {
    table += QByteArray::number(pdf.size()).rightJustified(10, '0') + " 00000 n \n";
    pdf += QByteArray::number(i + 1) + " 0 obj\n" + all[i] + "\nendobj\n";
  }
  const QByteArray size = QByteArray::number(all.size() + 1);
  const QByteArray start = QByteArray::number(pdf.size());
  return pdf + "xref\n0 " + size + '\n' + table + "trailer\n<</Size " + size + "/Root 1 0 R>>\nstartxref\n" + start +
         "\n%%EOF\n";
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

QByteArray BreakXref(QByteArray pdf) {
  const int at = pdf.lastIndexOf("startxref\n");
  return pdf.left(at) + "startxref\n7\n%%EOF\n";
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
  EXPECT_TRUE(mutool.waitForFinished());
  QByteArray url = mutool.readAllStandardOutput().trimmed();
  return url == "null" ? QByteArray() : url.mid(1, url.size() - 2);
}
