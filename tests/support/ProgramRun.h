// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QProcess>
#include <QStringList>

#include "tests/support/Files.h"

// Runs the program as a user does, in the test's working folder.
struct ProgramResult {
  int code = -1;  // 128 + signal when it crashed
  QByteArray out;
  QByteArray err;
};

// Prepares the environment, for tests that start the program through another one.
void PrepareToRun();
// The program leads a process group of its own.
std::unique_ptr<QProcess> StartProgram(const QStringList& arguments);
ProgramResult FinishProgram(QProcess& process, const QByteArray& input = QByteArray());
ProgramResult RunProgram(const QStringList& arguments, const QByteArray& input = QByteArray());

// Waits until a running program has written so many lines to the file, 200 s at most.
void WaitForLines(const QString& file, int lines);

// "run" with the Probe action.
QStringList ProbeRun(const QStringList& more);

// A one-page PDF; `catalog` and `page` hold further entries of these, `objects` further objects from number 4 on.
QByteArray MakePdf(const QByteArray& catalog = QByteArray(), const QList<QByteArray>& objects = {},
                   const QByteArray& page = QByteArray());
// A PDF with one signed field, with a certification of this level unless 0.
QByteArray MakeSignedPdf(int certification = 0);
// The same bytes with a cross-reference offset that leads nowhere.
QByteArray BreakXref(const QByteArray& pdf);

// The records of a report of either form, by file.
QMap<QString, QJsonObject> ReadReport(const QByteArray& report);
// What an independent program reads as the file's base URL.
QByteArray BaseUrlOf(const QString& file);
