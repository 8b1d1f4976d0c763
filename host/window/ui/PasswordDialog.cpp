// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/PasswordDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "host/window/ui/MutedLabel.h"

namespace {

constexpr int kMostNamed = 5;

}  // namespace

PasswordDialog::PasswordDialog(QWidget* parent, const QStringList& files) : QDialog(parent) {
  setObjectName(QStringLiteral("passwordDialog"));
  setWindowTitle(tr("Password"));
  QStringList names;
  for (const QString& file : files.mid(0, kMostNamed)) names += QFileInfo(file).fileName();
  if (files.size() > kMostNamed) names += QStringLiteral("…");
  auto* const text = new QLabel(tr("%n file(s) need a password:", nullptr, files.size()) + QLatin1Char('\n') +
                                names.join(QLatin1Char('\n')));
  text->setTextFormat(Qt::PlainText);
  password_ = new QLineEdit;
  password_->setObjectName(QStringLiteral("password"));
  password_->setEchoMode(QLineEdit::Password);
  auto* const show = new QCheckBox(tr("&Show the password"));
  auto* const note = new MutedLabel(tr("It is tried on all files and forgotten when the window closes."));
  note->setWordWrap(true);
  auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  QPushButton* const ok = buttons->button(QDialogButtonBox::Ok);
  ok->setEnabled(false);
  auto* const layout = new QFormLayout(this);
  layout->addRow(text);
  layout->addRow(tr("&Password:"), password_);
  layout->addRow(QString(), show);
  layout->addRow(note);
  layout->addRow(buttons);
  connect(password_, &QLineEdit::textChanged, ok, [ok](const QString& entered) { ok->setEnabled(!entered.isEmpty()); });
  connect(show, &QCheckBox::toggled, password_,
          [this](bool on) { password_->setEchoMode(on ? QLineEdit::Normal : QLineEdit::Password); });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QString PasswordDialog::Ask(QWidget* parent, const QStringList& files) {
  PasswordDialog dialog(parent, files);
  return dialog.exec() == QDialog::Accepted ? dialog.password_->text() : QString();
}
