// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <QComboBox>
#include <QFont>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QStandardItemModel>
#include <QTableView>
#include <QTextEdit>

#include "tests/pdflib/FakeLibrary.h"
#include "utils/CActionUtils.h"
#include "utils/CUtils.h"

namespace {

struct Picker {
  std::function<void(QComboBox*)> setUp;
  QSize iconSize;
  int rows, rowHeight, visible;
};

QList<Picker> Pickers() {
  const int untouched = QComboBox().maxVisibleItems();
  return {{[](QComboBox* combo) { CActionUtils::SetupColorPickerComboBox(combo, true); }, {15, 15}, 12, 17, 4},
          {[](QComboBox* combo) { CActionUtils::SetupColorPickerComboBox(combo, false); }, {15, 15}, 11, 17, 4},
          {CActionUtils::SetupLineStylePickerComboBox, {70, 14}, 5, 15, untouched},
          {CActionUtils::SetupUnderlineStylePickerComboBox, {70, 16}, 7, 19, 8},
          {CActionUtils::SetupLineWeightPickerComboBox, {30, 14}, 12, 15, untouched}};
}

TEST(Pickers, HaveTheirGeometryAndReplaceModelAndView) {
  for (const Picker& picker : Pickers()) {
    QComboBox combo;
    combo.resize(140, 24);
    picker.setUp(&combo);
    const QPointer<QAbstractItemModel> firstModel = combo.model();
    const QPointer<QAbstractItemView> firstView = combo.view();
    picker.setUp(&combo);
    EXPECT_TRUE(firstModel.isNull());
    EXPECT_TRUE(firstView.isNull());

    EXPECT_EQ(combo.iconSize(), picker.iconSize);
    EXPECT_EQ(combo.count(), picker.rows);
    EXPECT_EQ(combo.maxVisibleItems(), picker.visible);
    ASSERT_NE(qobject_cast<QStandardItemModel*>(combo.model()), nullptr);
    const auto* view = qobject_cast<QTableView*>(combo.view());
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->model(), combo.model());
    EXPECT_EQ(view->iconSize(), picker.iconSize);
    EXPECT_TRUE(view->verticalHeader()->isHidden() && view->horizontalHeader()->isHidden());
    EXPECT_EQ(view->columnWidth(0), 138);
    EXPECT_EQ(view->minimumSize(), QSize(138, picker.rows * picker.rowHeight));
    EXPECT_EQ(view->maximumSize(), view->minimumSize());
    for (int row = 0; row < picker.rows; ++row) EXPECT_EQ(view->rowHeight(row), picker.rowHeight);
    EXPECT_EQ(view->styleSheet(),
              "QTableView {gridline-color: white; background-color: white; selection-background-color: lightblue;}");
    picker.setUp(nullptr);
  }
}

QImage IconOf(const QComboBox& combo, int row) {
  return combo.itemIcon(row).pixmap(combo.iconSize()).toImage().convertToFormat(QImage::Format_ARGB32);
}

TEST(Pickers, ColorsAreFramedAndCarryTheirColor) {
  const QList<QPair<QString, QColor>> table = {
      {"Black", {0, 0, 0}},      {"White", {255, 255, 255}}, {"Gray", {160, 160, 164}},     {"Red", {255, 0, 0}},
      {"Orange", {255, 127, 0}}, {"Yellow", {255, 255, 0}},  {"Green", {0, 255, 0}},        {"Cyan", {0, 255, 255}},
      {"Blue", {0, 0, 255}},     {"Fuchsia", {255, 0, 255}}, {"Custom...", {255, 255, 255}}};
  for (bool withNone : {true, false}) {
    QComboBox combo;
    CActionUtils::SetupColorPickerComboBox(&combo, withNone);
    const int first = withNone ? 1 : 0;
    if (withNone) {
      EXPECT_EQ(combo.itemText(0), "(none)");
      EXPECT_TRUE(combo.itemIcon(0).isNull());
    }
    for (int i = 0; i < table.size(); ++i) {
      const auto& [text, color] = table[i];
      EXPECT_EQ(combo.itemText(first + i), text);
      const QImage icon = IconOf(combo, first + i);
      EXPECT_EQ(icon.size(), QSize(15, 15));
      EXPECT_EQ(icon.pixelColor(7, 7), color);
      for (const QPoint& corner : {QPoint(0, 0), QPoint(13, 0), QPoint(0, 13), QPoint(13, 13)}) {
        EXPECT_EQ(icon.pixelColor(corner), QColor(Qt::black)) << qPrintable(text);
      }
      const bool isCustom = i == table.size() - 1;
      EXPECT_EQ(combo.itemData(first + i, Qt::UserRole + 1), isCustom ? QVariant() : QVariant(color));
      EXPECT_EQ(combo.itemData(first + i), isCustom && withNone ? QVariant(QColor(Qt::white)) : QVariant());
      // The lookups always count with "(none)".
      EXPECT_EQ(CActionUtils::GetColorPickerColor(1 + i), isCustom ? QColor(Qt::black) : color);
      EXPECT_EQ(CActionUtils::GetColorPickerIndex(color), isCustom ? 2 : 1 + i);
    }
  }
  for (int index : {0, 11, 12, -5, INT_MIN, INT_MAX})
    EXPECT_EQ(CActionUtils::GetColorPickerColor(index), QColor(Qt::black));
  for (const QColor& other : {QColor(255, 128, 0), QColor(255, 0, 0, 254), QColor(), QColor::fromHsv(0, 255, 255)}) {
    EXPECT_EQ(CActionUtils::GetColorPickerIndex(other), 11);
  }
}

// What is drawn of an icon: its rows, the first and the last column, and the pieces of the first row.
QString Drawn(const QImage& icon) {
  const auto inked = [&icon](int x, int y) { return qAlpha(icon.pixel(x, y)) > 127; };
  QStringList rows;
  int left = icon.width(), right = 0, pieces = 0;
  for (int y = 0; y < icon.height(); ++y) {
    int last = -1;
    for (int x = 0; x < icon.width(); ++x) {
      if (!inked(x, y)) continue;
      if (rows.isEmpty() && (x == 0 || !inked(x - 1, y))) ++pieces;
      left = std::min(left, x);
      last = x;
    }
    if (last >= 0) rows << QString::number(y);
    right = std::max(right, last);
  }
  return QString("%1: %2-%3, %4").arg(rows.join(' ')).arg(left).arg(right).arg(pieces);
}

TEST(Pickers, LinesLieWhereTheyShould) {
  QComboBox styles, underlines, weights;
  CActionUtils::SetupLineStylePickerComboBox(&styles);
  CActionUtils::SetupUnderlineStylePickerComboBox(&underlines);
  CActionUtils::SetupLineWeightPickerComboBox(&weights);
  EXPECT_EQ(underlines.itemText(0), "(none)");
  EXPECT_TRUE(underlines.itemIcon(0).isNull());
  const struct {
    const QComboBox& picker;
    int row;
    int gray;
    const char* text;
    const char* drawn;
  } lines[] = {
      {styles, 0, 0, "", "6 7: 14-60, 1"},           {styles, 1, 0, "", "6 7: 14-59, 4"},
      {styles, 2, 0, "", "6 7: 14-59, 8"},           {styles, 3, 0, "", "6 7: 14-59, 5"},
      {styles, 4, 0, "", "6 7: 14-59, 6"},           {underlines, 1, 0, "", "9: 5-65, 1"},
      {underlines, 2, 0, "", "8 10: 5-65, 1"},       {underlines, 3, 0, "", "8 9 10: 4-66, 1"},
      {underlines, 4, 0, "", "9: 5-65, 21"},         {underlines, 5, 0, "", "9: 5-65, 11"},
      {underlines, 6, 0, "", "9: 5-65, 14"},         {weights, 0, 200, "0.1", "7: 3-27, 1"},
      {weights, 1, 170, "0.25", "7: 3-27, 1"},       {weights, 2, 140, "0.5", "7: 3-27, 1"},
      {weights, 3, 60, "0.75", "7: 3-27, 1"},        {weights, 4, 0, "1", "7: 3-27, 1"},
      {weights, 5, 0, "1.5", "6 7: 2-27, 1"},        {weights, 6, 0, "2", "6 7: 2-27, 1"},
      {weights, 7, 0, "2.5", "6 7 8: 2-28, 1"},      {weights, 8, 0, "3", "6 7 8: 2-28, 1"},
      {weights, 9, 0, "4", "5 6 7 8: 1-28, 1"},      {weights, 10, 0, "5", "5 6 7 8 9: 1-29, 1"},
      {weights, 11, 0, "6", "4 5 6 7 8 9: 0-29, 1"},
  };
  for (const auto& line : lines) {
    const QImage icon = IconOf(line.picker, line.row);
    EXPECT_EQ(Drawn(icon).toStdString(), line.drawn) << line.row;
    if (&line.picker == &underlines) continue;
    EXPECT_EQ(line.picker.itemText(line.row), line.text);
    EXPECT_EQ(icon.pixelColor(15, 7), QColor(line.gray, line.gray, line.gray)) << line.row;
  }
}

TEST(Pickers, StandardFontsArePlainItems) {
  QComboBox combo;
  combo.addItem("before");
  CActionUtils::SetupStandardFontsComboBox(&combo);
  ASSERT_EQ(combo.count(), 3);
  EXPECT_EQ(combo.itemText(0) + combo.itemText(1) + combo.itemText(2), "ArialTimes New RomanCourier");
  CActionUtils::SetupStandardFontsComboBox(nullptr);
  CActionUtils::SetupSystemFontsComboBox(nullptr);
}

TEST(Pickers, SystemFontsAreTheLibrarysLines) {
  // The recording library, found by the name and on the path that the library itself would be.
  const OpenFakeLibrary library("HalvexPDFLibraryCPDylib1311.dylib");
  const QList<QPair<std::wstring, QStringList>> table = {
      {L"", {}},
      {L"\r\n\r\n", {}},
      {L"Arial", {"Arial"}},
      {L"B\r\n\r\nA\U0001F600\u00e9\r\n\r\n", {"B", "", QString::fromUtf8("A\xf0\x9f\x98\x80\xc3\xa9")}}};
  QComboBox combo;
  for (const auto& [answer, fonts] : table) {
    combo.addItem("before");
    library.Take();
    library->wideResult = answer;
    CActionUtils::SetupSystemFontsComboBox(&combo);
    QStringList items;
    for (int row = 0; row < combo.count(); ++row) items << combo.itemText(row);
    EXPECT_EQ(items, fonts);
    const auto calls = library.Take();
    const auto asked = std::find_if(calls.begin(), calls.end(),
                                    [](const FakeCall& call) { return call.name == "HPLGetInstalledFontsByCharset"; });
    ASSERT_NE(asked, calls.end());
    EXPECT_EQ(std::get<int>(asked->arguments.at(asked->arguments.size() - 2)), 2);
    EXPECT_EQ(std::get<int>(asked->arguments.back()), 1);
    EXPECT_EQ(calls.back().name, "HPLReleaseLibrary");
  }
}

TEST(Pickers, BorderDashes) {
  struct Row {
    int style;
    double width;
    const char* dash;
  };
  const Row table[] = {{1, 1, "10 4"},
                       {2, 1, "6 4"},
                       {3, 1, "10 4 4 4"},
                       {4, 1, "10 4 4 4 4 4"},
                       {1, 0.5, "7 3"},
                       {2, 0, "3 2"},
                       {0, 1, "invalid"},
                       {5, 1, "invalid"},
                       {INT_MIN, 1, "invalid"},
                       {1, NAN, "0 0"},
                       {2, 1e300, "2147483647 2147483647"}};
  for (const Row& row : table) EXPECT_EQ(CActionUtils::GetBorderDash(row.style, row.width), row.dash);
}

TEST(TextItems, WrappedTextIsHigher) {
  const QFont font("Sans", 12);
  const QString html = "several <b>words</b> that do not fit into one narrow line";
  const double oneLine = CActionUtils::GetTextItemHeight(font, html, 10000);
  EXPECT_GT(oneLine, 0);
  EXPECT_EQ(CActionUtils::GetTextItemHeight(font, html, -1), oneLine);
  EXPECT_GT(CActionUtils::GetTextItemHeight(font, html, 100), 2 * oneLine);
  EXPECT_GT(CActionUtils::GetTextItemHeight(QFont("Sans", 40), html, 10000), oneLine);
  EXPECT_GT(CActionUtils::GetTextItemHeight(font, "two<br>lines", 10000), 1.5 * oneLine);
}

TEST(TextItems, IconsAreScaledAndAdded) {
  QIcon icon;
  CActionUtils::GenerateTextItemIcon(300.7, 100.2, "Text", &icon);
  ASSERT_EQ(icon.availableSizes(), QList<QSize>{QSize(128, 42)});
  const QImage image = icon.pixmap(128, 42).toImage().convertToFormat(QImage::Format_ARGB32);
  EXPECT_EQ(qAlpha(image.pixel(127, 41)), 0);
  int left = image.width();
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (qAlpha(image.pixel(x, y)) <= 127) continue;
      left = std::min(left, x);
      EXPECT_EQ(image.pixel(x, y) & RGB_MASK, 0U);
    }
  }
  EXPECT_LT(left, 3);

  CActionUtils::GenerateTextItemIcon(10, 100, "Text", &icon);  // keeps the first
  EXPECT_EQ(icon.availableSizes().size(), 2);
  for (double size : {0.0, 0.9, -5.0, 1e300, double(NAN)}) {
    CActionUtils::GenerateTextItemIcon(size, 10, "Text", &icon);
    CActionUtils::GenerateTextItemIcon(10, size, "Text", &icon);
  }
  EXPECT_EQ(icon.availableSizes().size(), 2);
  CActionUtils::GenerateTextItemIcon(10, 10, "Text", nullptr);

  // Sides beyond what a painter reaches at once: the text is painted to its end.
  const QString lines = QString("m\n").repeated(5000);
  // The last one would take 40 GB if it were painted as it is.
  for (const QSize& size : {QSize(400, 40000), QSize(40000, 400), QSize(100000, 100000)}) {
    QIcon large;
    const bool isWide = size.width() > size.height();
    CActionUtils::GenerateTextItemIcon(size.width(), size.height(), isWide ? QString(40000, 'W') : lines, &large);
    ASSERT_EQ(large.availableSizes(), QList<QSize>{size.scaled(128, 128, Qt::KeepAspectRatio)});
    if (size.width() == size.height()) continue;
    const QImage scaled = large.pixmap(128, 128).toImage().convertToFormat(QImage::Format_ARGB32);
    EXPECT_GT(qAlpha(scaled.pixel(size.width() > 400 ? 127 : 0, size.height() > 400 ? 127 : 0)), 0);
  }
}

TEST(Help, GoesToTheTargets) {
  QLabel label;
  QTextEdit page;
  CActionUtils::SetTargetLabels(&label, &page);
  CActionUtils::SetHelp("Action_SetBaseUrl.html");
  EXPECT_TRUE(page.toPlainText().contains("base URL", Qt::CaseInsensitive));
  // Decoded as the page declares itself, or else as Latin-1.
  EXPECT_TRUE(page.toPlainText().contains(QString::fromUtf8("\xe2\x80\x99")));
  const QList<QPair<QString, QChar>> pages = {{"cyrillic.html", QChar(0x416)}, {"undeclared.html", QChar(0xe9)}};
  for (const auto& [file, text] : pages) {
    CActionUtils::SetHelp(file);
    EXPECT_EQ(page.toPlainText().trimmed(), text);
  }
  CActionUtils::SetCurrentSection("Section");
  EXPECT_EQ(label.text(), "Section");
  CActionUtils::SetHelpHtml("<b>bold</b> text");
  EXPECT_EQ(page.toPlainText(), "bold text");
  for (const char* absent : {"absent.html", "", "../../../etc/passwd"}) {
    CActionUtils::SetHelpHtml("something");
    CActionUtils::SetHelp(absent);
    EXPECT_EQ(page.toPlainText(), "");
  }
  CActionUtils::SetTargetLabels(nullptr, nullptr);
}

TEST(ToolIcons, AreFoundByFileName) {
  EXPECT_FALSE(CActionUtils::GetIconForTool("Action_SetBaseURL.png").pixmap(16, 16).isNull());
  EXPECT_TRUE(CActionUtils::GetIconForTool("absent.png").pixmap(16, 16).isNull());
}

}  // namespace
