// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/command/SettingsCommand.h"

// Shows the action lists of the sequence folder, adds actions to lists and removes them.
class ListsCommand : public SettingsCommand {
 public:
  ListsCommand();

 protected:
  void Check() override;
  int Execute() override;

 private:
  enum class Verb { kShow, kAdd, kRemove };

  int Show() const;
  int Add() const;
  int Remove() const;
  // The argument after the verb.
  QString ListName() const { return parser_.positionalArguments().at(1); }

  Verb verb_ = Verb::kShow;
  int index_ = -1;
};
