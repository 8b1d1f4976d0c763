// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/MutedLabel.h"

#include <QApplication>
#include <QEvent>

MutedLabel::MutedLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
  setForegroundRole(QPalette::WindowText);  // whatever ground it is on
  Mute();
}

QColor MutedLabel::ColorOn(const QPalette& palette, QPalette::ColorRole text, QPalette::ColorRole ground) {
  const QColor& front = palette.color(QPalette::Active, text);
  const QColor& back = palette.color(QPalette::Active, ground);
  const auto mix = [](int one, int other) { return (one * 13 + other * 7) / 20; };
  return {mix(front.red(), back.red()), mix(front.green(), back.green()), mix(front.blue(), back.blue())};
}

void MutedLabel::changeEvent(QEvent* event) {
  QLabel::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && !muting_) Mute();
}

void MutedLabel::Mute() {
  muting_ = true;
  const QPalette usual = QApplication::palette(this);
  QPalette muted = usual;
  muted.setColor(QPalette::WindowText, ColorOn(usual, QPalette::WindowText, QPalette::Window));
  setPalette(muted);
  muting_ = false;
}
