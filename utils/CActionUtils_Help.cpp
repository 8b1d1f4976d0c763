// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QLabel>
#include <QTextCodec>
#include <QTextEdit>

#include "utils/CActionUtils.h"
#include "utils/KitResources.h"

QLabel* CActionUtils::mNavBarLabel = nullptr;
QTextEdit* CActionUtils::mInfoLabel = nullptr;

void CActionUtils::SetTargetLabels(QLabel* navBar, QTextEdit* info) {
  mNavBarLabel = navBar;
  mInfoLabel = info;
}

void CActionUtils::SetHelp(QString fileName) {
  InitKitResources();
  QFile page(QLatin1String(":/Vorlane/Resources/HelpFiles/") + fileName);
  const QByteArray html = page.open(QFile::ReadOnly | QFile::Text) ? page.readAll() : QByteArray();
  SetHelpHtml(QTextCodec::codecForHtml(html)->toUnicode(html));
}

void CActionUtils::SetHelpHtml(QString html) {
  mInfoLabel->setText(html);
}

void CActionUtils::SetCurrentSection(QString section) {
  mNavBarLabel->setText(section);
}
