// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

#include "host/window/core/Preview.h"

class QLabel;
class QStackedWidget;
class QTreeWidget;

// What would become of the selected file: the base URL before and after, hints, and where each relative link leads.
class PreviewPanel : public QWidget {
  Q_OBJECT

 public:
  explicit PreviewPanel(QWidget* parent = nullptr);

  // In place of a preview.
  void ShowHint(const QString& text);
  void ShowBusy(const QString& file);
  // `lacksSlash`: the hints offer to add the slash at the end of the base URL.
  void Show(const PreviewData& preview, bool lacksSlash = false);

 signals:
  void passwordWanted();
  void slashWanted();

 private:
  void ShowUrls(const PreviewData& preview, bool lacksSlash);
  void ShowLinks(const PreviewData& preview);

  QLabel* title_;
  QLabel* busy_;
  QStackedWidget* pages_;
  QLabel* hint_;
  QLabel* before_;
  QLabel* after_;
  QLabel* warnings_;
  QLabel* linksTitle_;
  QTreeWidget* links_;
};
