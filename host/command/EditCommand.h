// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/SettingsCommand.h"

// Opens an action's settings dialog as the host application does, and prints the settings.
class EditCommand : public SettingsCommand {
 public:
  EditCommand();

  bool NeedsWindowSystem() const override { return true; }
  void PrepareWindowSystem() const override;

 protected:
  void Check() override;
  int Execute() override;

 private:
  // What is edited, and what became of it.
  struct Session {
    QString listFile;
    QMap<QString, QVariant> settings;
    CActionInterface* action = nullptr;
  };

  Session Begin(ActionCatalog& catalog) const;
  bool ShowDialog(Session& session) const;
  int Finish(const Session& session) const;
  int Apply(const QStringList& arguments) const;

  int index_ = -1;
};
