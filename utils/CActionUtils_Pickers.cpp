// SPDX-License-Identifier: Apache-2.0
#include <QComboBox>
#include <QHeaderView>
#include <QPainter>
#include <QPixmap>
#include <QStandardItemModel>
#include <QTableView>
#include <vector>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "utils/CActionUtils.h"
#include "utils/SaturatedInt.h"

namespace {

const QLatin1String kNone("(none)");
constexpr int kCustomColorIndex = 11;
constexpr int kColorRole = Qt::UserRole + 1;

struct NamedColor {
  const char* text;
  QColor color;
};

// The colours in picker order; the first has position 1, after "(none)".
const std::vector<NamedColor>& Colors() {
  static const std::vector<NamedColor> colors = {
      {"Black", Qt::black},   {"White", Qt::white}, {"Gray", Qt::gray}, {"Red", Qt::red},   {"Orange", {255, 127, 0}},
      {"Yellow", Qt::yellow}, {"Green", Qt::green}, {"Cyan", Qt::cyan}, {"Blue", Qt::blue}, {"Fuchsia", Qt::magenta},
  };
  return colors;
}

struct Line {
  int y;
  int width = 1;
  Qt::PenStyle style = Qt::SolidLine;
  QColor color = Qt::black;
};

struct LineChoice {
  const char* text;         // may be null
  std::vector<Line> lines;  // none: no icon
};

// A picker of lines: what its icons share, and its choices from the top.
struct LinePicker {
  QSize iconSize;
  int left, right;
  int rowHeight;
  std::vector<LineChoice> choices;
};

const LinePicker& LineStyles() {
  static const LinePicker picker = {{70, 14},
                                    15,
                                    60,
                                    15,
                                    {{nullptr, {{7, 2, Qt::SolidLine}}},
                                     {nullptr, {{7, 2, Qt::DashLine}}},
                                     {nullptr, {{7, 2, Qt::DotLine}}},
                                     {nullptr, {{7, 2, Qt::DashDotLine}}},
                                     {nullptr, {{7, 2, Qt::DashDotDotLine}}}}};
  return picker;
}

const LinePicker& UnderlineStyles() {
  static const LinePicker picker = {{70, 16},
                                    5,
                                    65,
                                    19,
                                    {{"(none)", {}},
                                     {nullptr, {{9}}},
                                     {nullptr, {{8}, {10}}},
                                     {nullptr, {{9, 3}}},
                                     {nullptr, {{9, 1, Qt::DotLine}}},
                                     {nullptr, {{9, 1, Qt::DashLine}}},
                                     {nullptr, {{9, 1, Qt::DashDotLine}}}}};
  return picker;
}

// Below one pixel a weight shows as a lighter colour.
const LinePicker& LineWeights() {
  const auto thin = [](int gray) { return Line{7, 1, Qt::SolidLine, QColor(gray, gray, gray)}; };
  static const LinePicker picker = {{30, 14},
                                    3,
                                    27,
                                    15,
                                    {{"0.1", {thin(200)}},
                                     {"0.25", {thin(170)}},
                                     {"0.5", {thin(140)}},
                                     {"0.75", {thin(60)}},
                                     {"1", {thin(0)}},
                                     {"1.5", {{7, 2}}},
                                     {"2", {{7, 2}}},
                                     {"2.5", {{7, 3}}},
                                     {"3", {{7, 3}}},
                                     {"4", {{7, 4}}},
                                     {"5", {{7, 5}}},
                                     {"6", {{7, 6}}}}};
  return picker;
}

QIcon FramedColor(QSize size, const QColor& color) {
  QPixmap pixmap(size);
  pixmap.fill(color);
  QPainter(&pixmap).drawRect(0, 0, size.width() - 2, size.height() - 2);
  return QIcon(pixmap);
}

QIcon Lines(const LinePicker& picker, const std::vector<Line>& lines) {
  QPixmap pixmap(picker.iconSize);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  for (const Line& line : lines) {
    painter.setPen(QPen(line.color, line.width, line.style));
    painter.drawLine(picker.left, line.y, picker.right, line.y);
  }
  painter.end();
  return QIcon(pixmap);
}

// Gives the combo box a new model and view; it owns them and deletes those of an earlier call.
void BuildPicker(QComboBox* combo, QSize iconSize, int rowHeight, const QList<QStandardItem*>& items) {
  auto* model = new QStandardItemModel(combo);
  model->appendColumn(items);
  auto* view = new QTableView(combo);
  combo->setIconSize(iconSize);
  combo->setModel(model);
  combo->setView(view);
  view->verticalHeader()->hide();
  view->horizontalHeader()->hide();
  view->setIconSize(iconSize);
  view->setColumnWidth(0, combo->width() - 2);
  view->setFixedWidth(combo->width() - 2);
  view->verticalHeader()->setMinimumSectionSize(rowHeight);  // the style's own minimum is higher
  for (int row = 0; row < items.size(); ++row) view->setRowHeight(row, rowHeight);
  view->setFixedHeight(rowHeight * items.size());
  // The style sheet's colours are fixed, so the text is black in every desktop theme; many use white for a selection.
  QPalette palette = view->palette();
  palette.setColor(QPalette::Text, Qt::black);
  palette.setColor(QPalette::HighlightedText, Qt::black);
  view->setPalette(palette);
  view->setStyleSheet(
      QString("QTableView {gridline-color: white; background-color: white; selection-background-color: lightblue;}"));
}

void BuildLinePicker(QComboBox* combo, const LinePicker& picker) {
  QList<QStandardItem*> items;
  for (const LineChoice& choice : picker.choices) {
    auto* item = new QStandardItem;
    if (choice.text) item->setText(QLatin1String(choice.text));
    if (!choice.lines.empty()) item->setIcon(Lines(picker, choice.lines));
    items.append(item);
  }
  BuildPicker(combo, picker.iconSize, picker.rowHeight, items);
}

}  // namespace

void CActionUtils::SetupColorPickerComboBox(QComboBox* combo, bool withNone) {
  if (!combo) return;
  const QSize iconSize(15, 15);
  QList<QStandardItem*> items;
  if (withNone) items.append(new QStandardItem(kNone));
  for (const NamedColor& named : Colors()) {
    items.append(new QStandardItem(FramedColor(iconSize, named.color), QLatin1String(named.text)));
    items.last()->setData(named.color, kColorRole);
  }
  items.append(new QStandardItem(FramedColor(iconSize, Qt::white), QString("Custom...")));
  BuildPicker(combo, iconSize, 17, items);
  combo->setMaxVisibleItems(4);
  // The row of "Custom..." after "(none)". Without "(none)" there is no such row, and nothing is set, as hosts expect.
  combo->setItemData(kCustomColorIndex, QColor(Qt::white), Qt::UserRole);
}

void CActionUtils::SetupLineStylePickerComboBox(QComboBox* combo) {
  if (combo) BuildLinePicker(combo, LineStyles());
}

void CActionUtils::SetupUnderlineStylePickerComboBox(QComboBox* combo) {
  if (!combo) return;
  BuildLinePicker(combo, UnderlineStyles());
  combo->setMaxVisibleItems(8);
}

void CActionUtils::SetupLineWeightPickerComboBox(QComboBox* combo) {
  if (combo) BuildLinePicker(combo, LineWeights());
}

void CActionUtils::SetupStandardFontsComboBox(QComboBox* combo) {
  if (!combo) return;
  combo->clear();
  combo->addItems({QString("Arial"), QString("Times New Roman"), QString("Courier")});
}

void CActionUtils::SetupSystemFontsComboBox(QComboBox* combo) {
  if (!combo) return;
  combo->clear();
  HalvexPDFLibraryCPDylibCPP1311 library(L"HalvexPDFLibraryCPDylib1311.dylib");
  const QString names = QString::fromStdWString(library.GetInstalledFontsByCharset(2, 1));
  if (names.isEmpty()) return;
  QStringList fonts = names.split(QString("\r\n"));
  while (!fonts.isEmpty() && fonts.last().isEmpty()) fonts.removeLast();
  combo->addItems(fonts);
}

QColor CActionUtils::GetColorPickerColor(int index) {
  const auto& colors = Colors();
  const bool isNamed = index >= 1 && index <= static_cast<int>(colors.size());
  return isNamed ? colors[static_cast<std::size_t>(index) - 1].color : QColor(Qt::black);
}

int CActionUtils::GetColorPickerIndex(QColor color) {
  int index = 1;
  for (const NamedColor& named : Colors()) {
    if (named.color == color) return index;
    ++index;
  }
  return kCustomColorIndex;
}

QString CActionUtils::GetBorderDash(int style, double width) {
  const QString longDash = QString::number(SaturatedInt(width * 5 + 5));
  const QString shortDash = QString::number(SaturatedInt(width * 3 + 3));
  const QString gap = QString::number(SaturatedInt(width * 2 + 2));
  const auto pattern = [](const QStringList& lengths) { return lengths.join(u' '); };
  switch (style) {
    case 1:
      return pattern({longDash, gap});
    case 2:
      return pattern({shortDash, gap});
    case 3:
      return pattern({longDash, gap, gap, gap});
    case 4:
      return pattern({longDash, gap, gap, gap, gap, gap});
    default:
      return QString("invalid");
  }
}
