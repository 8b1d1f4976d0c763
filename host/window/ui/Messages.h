// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QWidget;

// Message boxes over a window.
namespace Messages {

// Asks before something that cannot be taken back; `button` names what is done. Cancel is the default.
bool Confirm(QWidget* parent, const QString& question, const QString& explanation, const QString& button);
void Warn(QWidget* parent, const QString& message);

}  // namespace Messages
