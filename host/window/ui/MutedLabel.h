// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLabel>

// A label for hints: paler than other text, in a light and in a dark window, and still easy to read.
class MutedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit MutedLabel(const QString& text = QString(), QWidget* parent = nullptr);

  static QColor ColorOn(const QPalette& palette, QPalette::ColorRole text, QPalette::ColorRole ground);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Mute();

  bool muting_ = false;
};
