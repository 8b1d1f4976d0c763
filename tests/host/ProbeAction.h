// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

// The action "Probe": writes a line for each call to the file of its setting "log", sets "baseUrlString" or, with the
// setting "add", appends it to what the document has, hangs before all documents with the setting "hang", and does what
// the document's file name holds: abort, exit, throw, hang (with a temporary file open), slow (100 ms), steps (20 times
// 25 ms), gate (until a file "open" is in the working folder), greedy (300 MiB), refused (a failing library call).
class ProbeAction : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.halvex.vorlane.probe")
  Q_INTERFACES(CActionInterface)

 public:
  int WorkProc(WorkProcInfoStruct* info) override;
  int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) override;
  int PreSequenceProc(WorkProcInfoStruct* info) override;
  int PostSequenceProc(WorkProcInfoStruct* info) override;

  QString GetActionName() override { return QStringLiteral("Probe"); }
  QString GetDisplayName() override { return QStringLiteral("Probe"); }
  QString GetActionHelp() override { return QStringLiteral("Probe.html"); }
  QString GetGroupName() override { return QStringLiteral("Tests"); }
  int GetActionFlags() override { return 0; }
  QString GetDefaultIcon() override { return QStringLiteral("Action_SetBaseURL.png#Probe_Selected.png"); }
};
