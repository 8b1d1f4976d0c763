// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <QApplication>
#include <QDialog>
#include <QTranslator>

// Calls `meet` once, from the event loop, when a modal dialog of that object name is open; `meet` has to close it. If
// none opens within a minute, the test fails and every modal dialog is closed, so that nothing hangs.
void MeetDialog(const QString& objectName, const std::function<void(QDialog&)>& meet);

// The child of that type and name; fails the test and throws when there is none.
template <typename T>
T& Child(const QWidget& parent, const char* objectName) {
  T* child = parent.findChild<T*>(QLatin1String(objectName));
  if (!child) throw std::runtime_error(std::string("no child ") + objectName);
  return *child;
}

// While one lives, every translated text is in brackets.
class PseudoLocale : public QTranslator {
 public:
  PseudoLocale() { QCoreApplication::installTranslator(this); }
  ~PseudoLocale() override { QCoreApplication::removeTranslator(this); }
  bool isEmpty() const override { return false; }
  QString translate(const char* context, const char* text, const char*, int) const override {
    return QStringLiteral("[%1|%2]").arg(QString::fromUtf8(context), QString::fromUtf8(text));
  }
};

// The texts of the widget and its children, those for screen readers too, that the pseudo-locale did not translate.
QStringList UntranslatedTexts(const QWidget& root);
