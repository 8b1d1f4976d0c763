// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

/// The action "Make Links Absolute": gives every relative link of a document the address that it leads to (RFC 3986,
/// 5.2), so that all viewers lead there. Anchors and links with a scheme stay; those in UTF-16 or PDFDocEncoding, which
/// viewers read differently, are rewritten in ASCII.
class CMakeLinksAbsolute : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.halvex.vorlane.makelinksabsolute")
  Q_INTERFACES(CActionInterface)

 public:
  /// Settings: "base", the base URL, the document's own if empty; "removeBase", whether the document's base URL is
  /// removed afterwards. Links that cannot be resolved stay as they are, and so does then the base URL; the document's
  /// kInformationWarnings has their number. Always 0; when a link could not be changed, the library's last error says
  /// why.
  int WorkProc(WorkProcInfoStruct* info) override;
  int ShowDialogProc(QWidget* parent, DialogLoadStruct* info) override;
  int PreSequenceProc(WorkProcInfoStruct*) override { return 1; }
  int PostSequenceProc(WorkProcInfoStruct*) override { return 1; }

  QString GetActionName() override { return QString("Make Links Absolute"); }
  QString GetDisplayName() override { return QString("Make Links Absolute"); }
  QString GetActionHelp() override { return QString("Action_MakeLinksAbsolute.html"); }
  QString GetGroupName() override { return QString("Document Properties"); }
  int GetActionFlags() override { return 15; }
  QString GetDefaultIcon() override {
    return QString(
        "Action_MakeLinksAbsolute.png#Action_MakeLinksAbsolute_Selected.png#Action_MakeLinksAbsolute_Disabled.png");
  }
};
