// SPDX-License-Identifier: Apache-2.0
// How the dialogs look: at several text sizes, with a light and a dark palette, in every context. Runs without
// OpenGL on the "offscreen" platform and with it on an X server.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPluginLoader>
#include <QRadioButton>
#include <QStyleOptionGroupBox>
#include <QTest>

#include "plugin/CActionInterface.h"
#include "plugin/DialogLoadStruct.h"
#include "tests/dialogs/MeetDialog.h"
#include "utils/CUtils.h"

namespace {

struct Window {
  const char* plugin;
  const char* settingsDialog;
  const char* dialog;
  const char* button;  // of the settings dialog, that opens it
  QSize form;
  int leastHeight;
  const char* focus;
};

constexpr Window kWindows[] = {
    {SETBASEURL_FILE, "SetBaseURLPrefsDialog", "SetBaseURLPrefsDialog", nullptr, {400, 160}, 0, "lineEdit"},
    {MAKELINKSABSOLUTE_FILE, "MakeLinksAbsoluteDialog", "MakeLinksAbsoluteDialog", nullptr, {460, 170}, 0, "baseEdit"},
    {SETBASEURL_FILE,
     "SetBaseURLPrefsDialog",
     "saveAsActionlistDialog",
     "VDtoolbarAddToActionListButton",
     {400, 192},
     0,
     "actionListNameLineEdit"},
    {SETBASEURL_FILE,
     "SetBaseURLPrefsDialog",
     "saveAsCollectionDialog",
     "VDtoolbarAddToCollectionsButton",
     {361, 201},
     236,
     "collectionNameLineEdit"},
};

QPalette darkPalette() {
  QPalette palette(QColor(53, 53, 53));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(role, Qt::white);
  }
  palette.setColor(QPalette::Base, QColor(35, 35, 35));
  return palette;
}

QRect titleOf(const QGroupBox& group) {
  QStyleOptionGroupBox option;
  option.initFrom(&group);
  option.text = group.title();
  option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
  return group.style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, &group);
}

double luminance(QRgb colour) {
  const auto linear = [](int channel) { return std::pow(channel / 255.0, 2.2); };
  return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

// The contrast ratio of the commonest colour to the one that differs most from it.
double contrast(const QImage& image) {
  std::map<QRgb, int> counts;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
  }
  const auto fewer = [](const auto& a, const auto& b) { return a.second < b.second; };
  const double ground = luminance(std::max_element(counts.begin(), counts.end(), fewer)->first);
  double best = 1;
  for (const auto& [colour, count] : counts) {
    const double ink = luminance(colour);
    best = std::max(best, (std::max(ink, ground) + 0.05) / (std::min(ink, ground) + 0.05));
  }
  return best;
}

// Where the widget draws text on the dialog's background; empty for a widget with its own background or without text.
QRect textOf(const QWidget& widget) {
  if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) return titleOf(*group);
  if (qobject_cast<const QRadioButton*>(&widget)) return widget.rect().adjusted(20, 0, 0, 0);
  return qobject_cast<const QLabel*>(&widget) ? widget.rect() : QRect();
}

void expectAllIsShown(QDialog& dialog) {
  for (QWidget* widget : dialog.findChildren<QWidget*>()) {
    if (!widget->isVisible() || qobject_cast<QComboBox*>(widget->parentWidget()) ||
        qobject_cast<QLineEdit*>(widget->parentWidget())) {
      continue;
    }
    SCOPED_TRACE(widget->objectName().toStdString());
    EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry()));
    const QSize needed = widget->minimumSizeHint().boundedTo(widget->maximumSize());
    // A button takes as little as its form gives it, if its text has room.
    const auto* button = qobject_cast<QAbstractButton*>(widget);
    const int text = button ? button->fontMetrics().horizontalAdvance(button->text()) + 8 : needed.width();
    EXPECT_GE(widget->width(), std::min(needed.width(), text));
    EXPECT_GE(widget->height(), needed.height());
    if (widget->hasHeightForWidth()) {
      EXPECT_GE(widget->height(), widget->heightForWidth(widget->width()));
    }
    for (QWidget* other : widget->parentWidget()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
      EXPECT_TRUE(other == widget || !other->isVisible() || !other->geometry().intersects(widget->geometry()));
    }
    if (const auto* group = qobject_cast<QGroupBox*>(widget->parentWidget())) {
      EXPECT_FALSE(titleOf(*group).intersects(widget->geometry())) << "covers the title";
    }
    if (widget->objectName() != "VDPrefixLabel" && qobject_cast<QLabel*>(widget) && !widget->hasHeightForWidth()) {
      const auto* label = static_cast<QLabel*>(widget);
      EXPECT_GE(label->width(), label->fontMetrics().horizontalAdvance(label->text()));
    }
  }
}

void expectTextsStandOut(QDialog& dialog) {
  for (QWidget* widget : dialog.findChildren<QWidget*>()) {
    const QRect text = textOf(*widget);
    if (!widget->isVisible() || text.isEmpty()) continue;
    const QImage image = dialog.grab(text.translated(widget->mapTo(&dialog, QPoint()))).toImage();
    EXPECT_GE(contrast(image), 3) << widget->objectName().toStdString();  // white on the header's grey has 3.1
  }
}

// A prefix that is too long for its label must be drawn as its elided text is.
void expectEllipsis(QDialog& dialog) {
  auto* prefix = dialog.findChild<QLabel*>("VDPrefixLabel");
  if (!prefix->isVisible() || prefix->fontMetrics().horizontalAdvance(prefix->text()) <= prefix->width()) return;
  const QImage shown = dialog.grab(QRect(prefix->mapTo(&dialog, QPoint()), prefix->size())).toImage();
  prefix->setText(prefix->fontMetrics().elidedText(prefix->text(), Qt::ElideRight, prefix->width()));
  EXPECT_EQ(dialog.grab(QRect(prefix->mapTo(&dialog, QPoint()), shown.size() / shown.devicePixelRatio())).toImage(),
            shown);
}

TEST(Looks, EveryDialogShowsEverythingAtEveryTextSizeAndInEveryPalette) {
  CUtils::SetupFolders();
  const QFont font = QApplication::font();
  const QPalette light = QApplication::palette();
  const int frame = CUtils::CheckOpenGLSupport() ? 51 : 35;
  for (const int percent : {100, 150, 200}) {
    QApplication::setFont(QFont("Sans Serif", 9 * percent / 100));
    for (const bool dark : {false, true}) {
      QApplication::setPalette(dark ? darkPalette() : light);
      for (const Window& window : kWindows) {
        QPluginLoader loader(QString::fromUtf8(window.plugin));
        auto* action = qobject_cast<CActionInterface*>(loader.instance());
        ASSERT_NE(action, nullptr) << loader.errorString().toStdString();
        for (const char* context : {"VorlaneClass", "VorlanePreviewClass", ""}) {
          SCOPED_TRACE(testing::Message() << percent << " % " << (dark ? "dark " : "light ") << window.dialog
                                          << " from '" << context << "'");
          QWidget host;
          host.setObjectName(context);
          QMap<QString, QVariant> settings{{"baseUrlString", "https://example.org/"}};
          DialogLoadStruct info{};
          info.settings = &settings;
          MeetDialog(window.settingsDialog, [&](QDialog& first) {
            MeetDialog(window.dialog, [&](QDialog& dialog) {
              EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
              const QSize stated(window.form.width(), std::max(window.form.height() + frame, window.leastHeight));
              if (percent == 100) {
                EXPECT_EQ(dialog.size(), stated);
              }
              EXPECT_EQ(dialog.size().expandedTo(stated), dialog.size());
              EXPECT_EQ(dialog.focusWidget(), &Child<QLineEdit>(dialog, window.focus));
              expectAllIsShown(dialog);
              expectTextsStandOut(dialog);
              expectEllipsis(dialog);
              dialog.reject();
            });
            if (window.button) Child<QAbstractButton>(first, window.button).click();
          });
          action->ShowDialogProc(&host, &info);
        }
      }
    }
  }
  QApplication::setFont(font);
  QApplication::setPalette(light);
}

}  // namespace
