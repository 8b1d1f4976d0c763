// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include "plugin/CActionInterface.h"

/// The action "Make Links Absolute": replaces every relative link of a document by the address that it leads to
/// (RFC 3986, 5.2), so that all viewers lead there. Anchors and links with a scheme stay, but are rewritten in ASCII if
/// they are UTF-16 or PDFDocEncoding, which viewers read differently.
class CMakeLinksAbsolute : public QObject, public CActionInterface {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.halvex.vorlane.makelinksabsolute")
  Q_INTERFACES(CActionInterface)

 public:
  /// Settings: "base", the base URL, if empty the document's own; "removeBase", whether the document's base URL is
  /// removed afterwards. It is not removed when a link or an anchor still needs it. A relative link without a base URL
  /// stays; kInformationWarnings of the document gets the number of these. Always returns 0; when a link could not be
  /// changed, the library's last error has the reason.
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
