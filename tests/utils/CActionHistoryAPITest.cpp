// SPDX-License-Identifier: Apache-2.0
#include "utils/CActionHistoryAPI.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <QCoreApplication>
#include <QDateTime>
#include <QIcon>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <stdexcept>

#include "tests/support/Files.h"
#include "utils/CUtils.h"

namespace {

using Map = QMap<QString, QVariant>;

QString EntryPath(const QString& name) {
  return CUtils::GetCollectionsFolder() + "/" + name + ".ini";
}

QIcon RedIcon() {
  QPixmap pixmap(64, 64);
  pixmap.fill(Qt::red);
  return QIcon(pixmap);
}

class ThrowingIconEngine : public QIconEngine {
  void paint(QPainter*, const QRect&, QIcon::Mode, QIcon::State) override {}
  QIconEngine* clone() const override { return new ThrowingIconEngine; }
  QPixmap pixmap(const QSize&, QIcon::Mode, QIcon::State) override { throw std::runtime_error("no pixmap"); }
};

class History : public testing::Test {
 protected:
  void SetUp() override { QDir().mkpath(CUtils::GetCollectionsFolder()); }

  static void Save(const QString& name, int value, int secondsAgo) {
    Map settings{{"CollectionName", name}, {"value", value}};
    QIcon icon = RedIcon();
    EXPECT_EQ(CActionHistoryAPI("").SaveSettingsToHistory(&settings, &icon), 0);
    EXPECT_LT(std::abs(QFileInfo(EntryPath(name)).lastModified().secsTo(QDateTime::currentDateTime())), 60);
    SetTime(EntryPath(name), QDateTime::currentDateTime().addSecs(-secondsAgo));
  }
  // The loaded settings' "value"; 0 for null.
  static int Load(CActionHistoryAPI& history, int step) {
    const std::unique_ptr<Map> settings(history.LoadSettingsFromHistory(step));
    return settings ? settings->value("value").toInt() : 0;
  }
};

TEST_F(History, StepsFromTheNewestAndBackFromBeyondEitherEnd) {
  // By time, not by name; files only; the prefix at the beginning only.
  Save("A9", 1, 20);
  Save("A2", 2, 10);
  Save("BA", 3, 5);
  QDir().mkpath(CUtils::GetCollectionsFolder() + "/A folder");
  CActionHistoryAPI history("A");
  Save("A3", 4, 0);  // too late for this pass
  EXPECT_EQ(Load(history, 0), 0);
  EXPECT_EQ(Load(history, 1), 2);
  EXPECT_EQ(Load(history, 1), 1);
  EXPECT_EQ(Load(history, 1), 0);
  EXPECT_EQ(Load(history, -1), 1);
  EXPECT_EQ(Load(history, -3), 0);
  EXPECT_EQ(Load(history, 2), 2);
  // The position stops at the ends of its type instead of wrapping round.
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Load(history, INT_MAX), 0);
  EXPECT_EQ(Load(history, -INT_MAX), 2);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Load(history, INT_MIN), 0);
}

TEST_F(History, SavingAgainReplacesTheEntry) {
  Save("same", 1, -3600);  // with a time in the future
  Save("same", 2, 0);
  EXPECT_EQ(Tree(CUtils::GetCollectionsFolder()), QStringList("same.ini"));
  CActionHistoryAPI history("s");
  EXPECT_EQ(Load(history, 1), 2);

  const QImage image = IniValue(EntryPath("same"), "ActionIcon").value<QImage>();
  EXPECT_EQ(image.size(), QSize(42, 42));
  EXPECT_EQ(image.pixelColor(21, 21), QColor(Qt::red));
  EXPECT_EQ(IniValue(EntryPath("same"), "ActionPrefs").toMap().value("CollectionName"), "same");

  Map unnamed{{"value", 7}};
  QIcon none;
  EXPECT_EQ(CActionHistoryAPI("").SaveSettingsToHistory(&unnamed, &none), 0);
  EXPECT_EQ(IniValue(CUtils::GetCollectionsFolder() + "/.ini", "ActionPrefs").toMap(), unnamed);
}

TEST_F(History, TheStoredIconHasOneSize) {
  QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
  Map settings{{"CollectionName", "icon"}};
  const QList<QPair<QSize, qreal>> table = {{{84, 84}, 2.0}, {{63, 63}, 1.5}, {{16, 16}, 1.0}, {{200, 100}, 1.0}};
  for (const auto& [size, ratio] : table) {
    QPixmap pixmap(size);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::red);
    QIcon icon(pixmap);
    EXPECT_EQ(CActionHistoryAPI("").SaveSettingsToHistory(&settings, &icon), 0);
    const QImage image = IniValue(EntryPath("icon"), "ActionIcon").value<QImage>();
    EXPECT_EQ(image.size(), QSize(42, 42));
    EXPECT_EQ(image.pixelColor(21, 21), QColor(Qt::red));
    const bool fills = size.width() > 42 && size.width() == size.height();
    EXPECT_EQ(image.pixelColor(1, 1).alpha(), fills ? 255 : 0) << size.width();
  }
}

TEST_F(History, WhatHoldsNoSettingsLoadsAsNull) {
  WriteFile(EntryPath("a"), "[General]\nOther=1\n");
  WriteFile(EntryPath("b"), "\x7f\x45\x4c\x46 not settings");
  CActionHistoryAPI history("");
  EXPECT_EQ(history.LoadSettingsFromHistory(1), nullptr);
  EXPECT_EQ(history.LoadSettingsFromHistory(1), nullptr);
}

TEST_F(History, AFailedSaveKeepsTheOldEntry) {
  Save("kept", 1, 0);
  Map settings{{"CollectionName", "kept"}, {"value", 2}};
  QIcon icon = RedIcon();
  QIcon throwing(new ThrowingIconEngine);
  CActionHistoryAPI history("kept");
  {
    const FullDisk full;
    EXPECT_EQ(history.SaveSettingsToHistory(&settings, &icon), 0);
  }
  EXPECT_EQ(history.SaveSettingsToHistory(&settings, &throwing), 1);
  EXPECT_EQ(history.SaveSettingsToHistory(nullptr, &icon), 1);
  EXPECT_EQ(history.SaveSettingsToHistory(&settings, nullptr), 1);
  EXPECT_EQ(Load(history, 1), 1);
  EXPECT_EQ(Tree(CUtils::GetCollectionsFolder()), QStringList("kept.ini"));
}

}  // namespace
