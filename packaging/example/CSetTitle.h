// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

// An example action: sets the document's title to the setting "titleString".
class CSetTitle : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.example.settitle")
  Q_INTERFACES(CActionInterface)

 public:
  int WorkProc(WorkProcInfoStruct* info) override;
  int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) override;
  int PreSequenceProc(WorkProcInfoStruct*) override { return 1; }
  int PostSequenceProc(WorkProcInfoStruct*) override { return 1; }
  QString GetActionName() override { return QStringLiteral("Set Title"); }
  QString GetDisplayName() override { return QStringLiteral("Set Title"); }
  QString GetActionHelp() override { return QString(); }
  QString GetGroupName() override { return QStringLiteral("Document Properties"); }
  int GetActionFlags() override { return 15; }
  QString GetDefaultIcon() override { return QString(); }
};
