// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <QByteArray>
#include <QString>
#include <QStringList>

#include "host/window/core/ActionChoice.h"
#include "host/window/core/FileTableModel.h"
#include "tests/support/ProgramRun.h"

// The program that a test starts as vorlane-run, until the end of the test: the built one, or a shell script of this
// text that gets the same arguments.
class Runner {
 public:
  Runner();
  explicit Runner(const QByteArray& script);
  ~Runner();
  Runner(const Runner&) = delete;
  Runner& operator=(const Runner&) = delete;
};

// Lets the event loop run until the condition holds; false when that takes longer than half a minute.
bool Await(const std::function<bool()>& condition);

// The absolute path of a file in the working folder. A byte that is not UTF-8 may be in the name.
QString Here(const QByteArray& name);
// Writes a PDF for each name and returns the paths.
QStringList MakePdfs(const QList<QByteArray>& names, const QByteArray& pdf = MakePdf());

// As FolderScanner finds them.
QVector<FoundFile> Files(const QStringList& paths);
// "Set Base URL" with that URL; its plug-in is loaded, so that its description of settings is there.
ActionChoice SetBaseUrl(const QString& url);
// The action of tests that misbehaves as its documents are named.
ActionChoice Probe();
