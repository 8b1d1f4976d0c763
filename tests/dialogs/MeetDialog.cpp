// SPDX-License-Identifier: Apache-2.0
#include "tests/dialogs/MeetDialog.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QGroupBox>
#include <QLabel>
#include <QTimer>

void MeetDialog(const QString& objectName, const std::function<void(QDialog&)>& meet) {
  auto* timer = new QTimer(QApplication::instance());
  QElapsedTimer waited;
  waited.start();
  QObject::connect(timer, &QTimer::timeout, timer, [=] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (dialog && dialog->objectName() == objectName) {
      timer->stop();
      timer->deleteLater();
      meet(*dialog);
    } else if (waited.hasExpired(60000)) {
      timer->stop();
      timer->deleteLater();
      ADD_FAILURE() << "no dialog " << objectName.toStdString();
      for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isModal()) window->close();
      }
    }
  });
  timer->start(1);
}

QStringList UntranslatedTexts(const QWidget& root) {
  QStringList texts{root.windowTitle()};
  for (const QWidget* widget : root.findChildren<QWidget*>()) {
    if (widget->isHidden()) continue;
    texts << widget->toolTip() << widget->accessibleName();
    if (auto* button = qobject_cast<const QAbstractButton*>(widget)) texts << button->text();
    if (auto* label = qobject_cast<const QLabel*>(widget)) texts << label->text();
    if (auto* box = qobject_cast<const QGroupBox*>(widget)) texts << box->title();
  }
  QStringList untranslated;
  for (const QString& text : texts) {
    if (!text.isEmpty() && !text.startsWith(QLatin1Char('['))) untranslated << text;
  }
  return untranslated;
}
