// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QIcon>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

class CActionInterface;
class HalvexPDFLibraryCPDylibCPP1311;

// Opens an action's own settings dialog over a window, and sees what its header buttons do.
//
// The dialog closes as rejected when a header button was used: then only files show what was stored, and a favorite's
// name and icon are lost with the dialog. So the dialogs are watched while they are open, and a settings dialog that a
// header button closes is made to return its settings.
class SettingsDialogRunner : public QObject {
  Q_OBJECT

 public:
  struct Result {
    bool accepted = false;  // the user chose these settings, by OK or by saving them
    QMap<QString, QVariant> settings;
    QString favoriteName;  // not empty: they are to be saved as a favorite
    QIcon favoriteIcon;
    QString listFile;         // not empty: they are in this action list now
    bool listFailed = false;  // the user saved them in `listFile`, which was not written
    QString settingsFile;     // not empty: they were written to this file
  };

  // The window has the object name by which dialogs know the host's main window.
  explicit SettingsDialogRunner(QWidget* window) : QObject(window), window_(window) {}

  bool IsRunning() const { return running_; }
  // Opens the dialog and returns when it is closed. Without settings it starts with those of the document, which may be
  // null. The document is the caller's.
  Result Run(CActionInterface& action, const QMap<QString, QVariant>& settings,
             HalvexPDFLibraryCPDylibCPP1311* document);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void Polish(QDialog& dialog) const;
  void Watch(QDialog* dialog);
  void OnHeaderDialogFinished(QDialog& dialog, int code);
  void OfferLinks(QDialog& dialog) const;

  QWidget* window_;
  bool running_ = false;
  QPointer<QDialog> settingsDialog_;
  QString actionName_;
  bool headerDialogClosed_ = false;
  bool saved_ = false;
  QMap<QString, qint64> listsBefore_;
  Result result_;
};
