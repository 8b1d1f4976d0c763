// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CVorlaneDialog.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QLabel>
#include <QLayout>
#include <QScreen>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>

#include "tests/dialogs/MeetDialog.h"
#include "utils/CActionUtils.h"
#include "utils/CUtils.h"

namespace {

// A dialog around a 400 x 300 form, as a subclass makes it.
class FormDialog : public CVorlaneDialog {
  Q_OBJECT
 public:
  FormDialog(QWidget* parent, bool fixedSize) : CVorlaneDialog(parent, false) {
    auto* form = new QWidget(this);
    form->setObjectName("main_widget");
    form->resize(400, 300);
    VDtitleLabel->setText("Title");
    VDaddMainWidget(form, fixedSize);
  }
  QStringList calls;

 public Q_SLOTS:
  void on_VDShowSaveDialog() { calls << "list"; }
  void on_VDShowSaveCollectionDialog() { calls << "favorites"; }
};

// The frame's outermost pixel, and one of the white area.
std::pair<QColor, QColor> drawnColours(CVorlaneDialog& dialog) {
  dialog.show();
  const QImage image = dialog.grab().toImage();
  return {image.pixelColor(image.width() / 2, 0), image.pixelColor(image.width() / 2, image.height() / 2)};
}

TEST(CVorlaneDialog, TakesThemeAndPrefixFromTheNearestKnownAncestor) {
  const QColor blue(50, 50, 170);
  const QColor grey(140, 130, 130);
  struct Case {
    const char* outer;
    const char* inner;
    QColor border;
    bool prefix;
  };
  for (const Case& c :
       {Case{"VorlaneClass", "", blue, false}, Case{"", "VorlaneClass", blue, false},
        Case{"VorlanePreviewClass", "", grey, false}, Case{"VorlaneClass", "VorlanePreviewClass", grey, false},
        Case{"VorlanePreviewClass", "VorlaneClass", blue, false}, Case{"", "", grey, true},
        Case{"vorlaneclass", "VorlaneClassX", grey, true}}) {
    QWidget outer;
    outer.setObjectName(c.outer);
    auto* inner = new QWidget(&outer);
    inner->setObjectName(c.inner);
    FormDialog dialog(inner, false);
    const auto& prefix = Child<QLabel>(dialog, "VDPrefixLabel");
    EXPECT_EQ(drawnColours(dialog), std::make_pair(c.border, QColor(Qt::white))) << c.outer << "/" << c.inner;
    EXPECT_EQ(prefix.isVisible(), c.prefix) << c.outer << "/" << c.inner;
    if (c.prefix) {
      EXPECT_EQ(prefix.text(), "Nolva Reader Advanced Tools -");
    }
  }
}

TEST(CVorlaneDialog, SizesItselfAroundTheForm) {
  const bool translucent = CUtils::CheckOpenGLSupport();
  const QSize full = translucent ? QSize(416, 351) : QSize(400, 335);

  FormDialog resizable(nullptr, false);
  EXPECT_EQ(resizable.testAttribute(Qt::WA_TranslucentBackground), translucent);
  EXPECT_EQ(resizable.size(), full);
  EXPECT_EQ(resizable.minimumSize(), full);
  EXPECT_EQ(resizable.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));

  FormDialog fixed(nullptr, true);
  EXPECT_EQ(fixed.minimumSize(), QSize(400, full.height()));
  EXPECT_EQ(fixed.maximumSize(), QSize(400, full.height()));
  EXPECT_EQ(fixed.size(), QSize(400, full.height()));
  // Centred while it still had the frame's extra width.
  EXPECT_EQ(fixed.pos(), resizable.pos());
}

TEST(CVorlaneDialog, CentresOnThePreviewWindowOrTheScreen) {
  const auto centre = [](const QRect& r) { return QPoint((r.left() + r.right()) / 2, (r.top() + r.bottom()) / 2); };
  const auto half = [](const QWidget& w) { return QPoint((w.width() - 1) / 2, (w.height() - 1) / 2); };
  QWidget window;
  window.setGeometry(51, 70, 501, 444);
  const FormDialog other(&window, false);
  EXPECT_EQ(other.pos(), centre(QApplication::primaryScreen()->availableGeometry()) - half(other));
  window.setObjectName("VorlanePreviewClass");
  const FormDialog preview(&window, false);
  EXPECT_EQ(preview.pos(), centre(window.geometry()) - half(preview));
}

// What an author's form may hold: the window grows for a text of several lines, and not for what can be scrolled; a
// colour of its own stays; and a picker set up before the window is shown has a popup of the combo box's width.
TEST(CVorlaneDialog, LaysTheFormOutAsSoonAsItIsAdded) {
  struct AuthorsDialog : CVorlaneDialog {
    explicit AuthorsDialog(const QString& text) : CVorlaneDialog(nullptr, false) {
      auto* form = new QWidget(this);
      form->resize(300, 200);
      auto* layout = new QFormLayout(form);
      label->setWordWrap(true);
      label->setText(text);
      QPalette red;
      red.setColor(QPalette::WindowText, Qt::red);
      label->setPalette(red);
      layout->addRow(label);
      layout->addRow("Colour:", combo);
      layout->addRow(new QTextEdit(form));
      VDaddMainWidget(form, true);
      CActionUtils::SetupColorPickerComboBox(combo, true);
    }
    QLabel* label = new QLabel;
    QComboBox* combo = new QComboBox;
  };
  AuthorsDialog small("One line");
  EXPECT_EQ(small.height(), CUtils::CheckOpenGLSupport() ? 251 : 235);
  EXPECT_EQ(small.combo->view()->width(), small.combo->width() - 2);
  EXPECT_EQ(small.label->palette().color(QPalette::WindowText), QColor(Qt::red));
  const int width = small.combo->width();
  small.show();
  EXPECT_EQ(small.combo->width(), width);
  AuthorsDialog large(QString("Many lines ").repeated(60));
  EXPECT_GT(large.height(), small.height());
  large.show();
  EXPECT_GE(large.label->height(), large.label->heightForWidth(large.label->width()));
}

TEST(CVorlaneDialog, HasItsHeaderAndKeepsTheShadowHidden) {
  FormDialog dialog(nullptr, false);
  dialog.VDhideAddToActionListButton();  // too early: nothing to hide
  dialog.VDaddTopButtons();
  dialog.VDaddCloseButton();
  dialog.VDaddMainWidget(nullptr, true);
  dialog.show();
  for (const char* place : {"TopLeft", "Top", "TopRight", "Left", "Right", "BtmLeft", "Btm", "BtmRight"}) {
    auto& shadow = Child<QFrame>(dialog, (std::string("VDshadow") + place).c_str());
    EXPECT_TRUE(shadow.isHidden()) << place;
    EXPECT_TRUE(shadow.width() == 8 || shadow.height() == 8) << place;
  }
  EXPECT_EQ(Child<QWidget>(dialog, "VDheaderWidget").height(), 30);

  int right = Child<QLabel>(dialog, "VDtitleLabel").geometry().right();
  for (const char* name :
       {"VDtoolbarAddToActionListButton", "VDtoolbarAddToCollectionsButton", "vorlaneHeaderCloseBtn"}) {
    const auto& button = Child<QToolButton>(dialog, name);
    EXPECT_EQ(button.size(), QSize(24, 24)) << name;
    EXPECT_FALSE(button.icon().pixmap(button.iconSize()).isNull()) << name;
    EXPECT_FALSE(button.accessibleName().isEmpty()) << name;
    EXPECT_EQ(button.focusPolicy(), Qt::NoFocus) << name;
    EXPECT_EQ(button.x(), right + 7) << name;
    right = button.geometry().right();
  }
  dialog.VDhideAddToActionListButton();
  EXPECT_FALSE(Child<QWidget>(dialog, "VDtoolbarAddToActionListButton").isVisible());
}

TEST(CVorlaneDialog, HeaderButtonsReachTheSubclassOnceAndTheCloseButtonRejects) {
  FormDialog dialog(nullptr, false);
  dialog.VDaddTopButtons();
  dialog.VDaddCloseButton();
  MeetDialog(QString(), [&dialog](QDialog& shown) {
    auto& list = Child<QToolButton>(shown, "VDtoolbarAddToActionListButton");
    QTest::mouseClick(&list, Qt::LeftButton);
    QTest::mouseDClick(&list, Qt::LeftButton);  // the second half of a double click
    QTest::mouseRelease(&list, Qt::LeftButton);
    EXPECT_EQ(dialog.calls, QStringList("list"));
    Child<QToolButton>(shown, "VDtoolbarAddToCollectionsButton").click();
    EXPECT_EQ(dialog.calls.last(), "favorites");
    Child<QToolButton>(shown, "vorlaneHeaderCloseBtn").click();
  });
  EXPECT_EQ(dialog.exec(), QDialog::Rejected);
}

}  // namespace

#include "CVorlaneDialogTest.moc"
