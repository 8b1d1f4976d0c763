// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

/// The action "Set Base URL": writes the setting "baseUrlString" into every document of a run.
class CSetBaseURL : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.halvex.vorlane.setbaseurl")
  Q_INTERFACES(CActionInterface)

 public:
  /// Sets the document's base URL; an empty one if the setting is missing. The library's result is not examined. Always
  /// returns 0.
  int WorkProc(WorkProcInfoStruct* info) override;
  int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) override;
  int PreSequenceProc(WorkProcInfoStruct* info) override;
  int PostSequenceProc(WorkProcInfoStruct* info) override;

  QString GetActionName() override;
  QString GetDisplayName() override;
  QString GetActionHelp() override;
  QString GetGroupName() override;
  int GetActionFlags() override;
  QString GetDefaultIcon() override;
};
