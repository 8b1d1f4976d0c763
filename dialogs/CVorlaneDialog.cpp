// SPDX-License-Identifier: Apache-2.0
#include "dialogs/CVorlaneDialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFontInfo>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QRadioButton>
#include <QScreen>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <QVBoxLayout>

#include "dialogs/CVorlaneHeaderButton.h"
#include "utils/CUtils.h"
#include "utils/KitResources.h"

namespace {

constexpr int kShadowThickness = 8;
constexpr int kHeaderHeight = 30;
constexpr int kHeaderTextHeight = 25;  // what the header's margins leave
constexpr int kResizeBorder = 9;
constexpr int kButtonPadding = 6;  // the least that looks well around a button's text

const QLatin1String kPreviewName("VorlanePreviewClass");
const QLatin1String kMainWindowName("VorlaneClass");

const QLatin1String kHeaderStyle(
    "QFrame#VDheaderFrame {\n"
    "background-image: url(:/Vorlane/Resources/VorlaneHeader.png);\n"
    "background-repeat: no-repeat;\n"
    "}");

const QLatin1String kBlueTheme(
    "QWidget#main_widget {background-color: rgb(255,255,255);color: rgb(0, 0, 0);}"
    "QFrame#VDmainFrame {background: rgb(147, 147 ,147);border: 1px solid rgb(50,50,170);}"
    "QGroupBox {border: 1px solid rgb(190,190,190);margin: 4px;margin-top: 6px;padding-top: 5px;}"
    "QGroupBox::title {padding-left: 2px;padding-right: 2px;left: 10px;top: -5 px;}"
    "QLineEdit::disabled {background-color: rgb(235,235,235);}"
    "QWidget#button_widget {color: white;"
    "background-color:qlineargradient(spread:repeat, x1:0, y1:0, x2:0, y2:1, "
    "stop:0 rgba(70,90,160), stop:1 rgba(40,60,90));"
    "border-top-left-radius: 6px;border-bottom-left-radius: 6px;"
    "border-top-right-radius: 6px;border-bottom-right-radius: 6px;}");

// What makes the blue theme grey. The first pair matches nothing in the sheet above; it stays for sheets that have it.
const QLatin1String kGreyReplacements[][2] = {
    {QLatin1String("background: rgb(0,0,31);"), QLatin1String("background: rgb(40,36,36);")},
    {QLatin1String("rgb(50,50,170);"), QLatin1String("rgb(140,130,130);")},
    {QLatin1String("rgba(70,90,160)"), QLatin1String("rgba(140,130,130)")},
    {QLatin1String("rgba(40,60,90)"), QLatin1String("rgba(40,36,36)")},
};

QString headerButtonStyle() {
  const QString lit = QString(
      "background-color: qlineargradient(spread:repeat, x1:0, y1:0, x2:1, y2:0, "
      "stop:0 rgba(210, 210, 210), stop:1 rgba(210, 210, 210));"
      "color: white;background-image: url(none.png);border: none;}");
  return QString(
             "QToolButton {background-color: transparent;color: white;background-image: url(none.png);border: none;}"
             "QToolButton QWidget {background-color: black;}"
             "QToolButton:disabled{background-color: transparent;color: silver;"
             "background-image: url(none.png);border: none;}"
             "QToolButton:checked{%1QToolButton:hover{%1QToolButton:pressed {%1"
             "QToolTip {background-color: white;color: black;background-image: url(none.png);border: none;}")
      .arg(lit);
}

void frameLook(QFrame* frame) {
  frame->setFrameShape(QFrame::StyledPanel);
  frame->setFrameShadow(QFrame::Raised);
}

QString resource(const char* file) {
  return QString(":/Vorlane/Resources/") + QLatin1String(file);
}

// The position at which the window's centre is that of the reference. Of two middle pixels the first one counts.
QPoint centredTopLeft(const QRect& window, const QRect& reference) {
  return {(reference.left() + reference.right()) / 2 - (window.right() - window.left()) / 2,
          (reference.top() + reference.bottom()) / 2 - (window.bottom() - window.top()) / 2};
}

// A text in the header, in a font that fits its height. With `mayShrink` it ends in an ellipsis where room is short.
class HeaderLabel : public QLabel {
 public:
  HeaderLabel(QWidget* header, bool mayShrink) : QLabel(header), mayShrink_(mayShrink) {
    const int height = fontMetrics().height();
    if (height <= kHeaderTextHeight) return;
    QFont smaller = font();
    smaller.setPixelSize(QFontInfo(smaller).pixelSize() * kHeaderTextHeight / height);
    setFont(smaller);
  }
  QSize minimumSizeHint() const override {
    return {mayShrink_ ? fontMetrics().horizontalAdvance(QChar(0x2026)) : textWidth(),
            QLabel::minimumSizeHint().height()};
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    if (textWidth() <= contentsRect().width()) return QLabel::paintEvent(event);
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), int(alignment()), palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width()), foregroundRole());
  }

 private:
  // The size hint is a little more.
  int textWidth() const { return fontMetrics().horizontalAdvance(text()); }

  const bool mayShrink_;
};

// The form is white in every palette, so its texts are black. A widget with a text colour of its own keeps it.
void writeBlackOnWhite(const QWidget* form) {
  for (QWidget* child : form->findChildren<QWidget*>()) {
    if (!qobject_cast<QLabel*>(child) && !qobject_cast<QGroupBox*>(child) && !qobject_cast<QRadioButton*>(child) &&
        !qobject_cast<QCheckBox*>(child)) {
      continue;
    }
    QPalette palette = child->palette();
    if (palette.color(QPalette::WindowText) != QApplication::palette(child).color(QPalette::WindowText)) continue;
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, Qt::gray);
    child->setPalette(palette);
  }
}

// A minimum width that the form sets may be too small for a large font. A fixed width stays.
void keepTextWhole(QAbstractButton* button) {
  if (button->minimumWidth() == 0 || button->minimumWidth() == button->maximumWidth()) return;
  const int text = button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width();
  if (text + 2 * kButtonPadding > button->minimumWidth()) button->setMinimumWidth(button->minimumSizeHint().width());
}

// The style sheet puts a group's title at a fixed place, where a large one would cover the group's content.
void keepTitleFree(QGroupBox* group) {
  if (!group->layout() || group->title().isEmpty()) return;
  QStyleOptionGroupBox option;
  option.initFrom(group);
  option.text = group->title();
  option.lineWidth = 1;
  option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
  option.textAlignment = group->alignment();
  const QRect title = group->style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, group);
  QMargins margins = group->layout()->contentsMargins();
  margins.setTop(qMax(margins.top(), title.bottom() + 1 - group->contentsRect().top()));
  group->layout()->setContentsMargins(margins);
}

// Gives every child its style and its geometry, as showing the window would.
void layOut(QWidget* window) {
  const auto children = window->findChildren<QWidget*>();
  for (QWidget* child : children) child->ensurePolished();
  for (QLayout* layout : window->findChildren<QLayout*>()) layout->invalidate();
  window->layout()->activate();
  for (QWidget* child : children) {
    if (child->layout()) child->layout()->activate();
  }
}

}  // namespace

// One of the eight image frames around the main frame. Corners hold one image, edges repeat theirs.
struct CVorlaneDialog::ShadowPiece {
  QFrame* CVorlaneDialog::*frame;
  const char* place;
  int row;
  int column;
  const char* imagePosition;  // of a corner; null for an edge
};

struct CVorlaneDialog::HeaderButton {
  const char* objectName;
  QString text;
  int iconSize;
  const char* normalIcon;
  const char* disabledIcon;
  const char* slot;
};

CVorlaneDialog::CVorlaneDialog(QWidget* parent, bool flag) : QDialog(parent, Qt::FramelessWindowHint), shellFlag(flag) {
  InitKitResources();
  const Context context = findContext(parent);
  const bool translucent = CUtils::CheckOpenGLSupport();
  if (translucent) setAttribute(Qt::WA_TranslucentBackground);
  frameExtraHeight = translucent ? 51 : 35;
  frameExtraWidth = translucent ? 16 : 0;

  resize(730, 599);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  policy.setHeightForWidth(sizePolicy().hasHeightForWidth());
  setSizePolicy(policy);
  setMinimumSize(100, 100);
  QIcon icon;
  icon.addFile(resource("Icons/App_icon_256x256.png"), QSize(), QIcon::Normal, QIcon::Off);
  setWindowIcon(icon);
  setProperty("iconSize", QSize(24, 24));

  buildFrame();
  applyContext(context);

  framelessHandler.activateOn(this);
  framelessHandler.setWidgetResizable(true);
  for (QFrame* shadow : {VDshadowBtm, VDshadowBtmLeft, VDshadowBtmRight, VDshadowLeft, VDshadowRight, VDshadowTop,
                         VDshadowTopLeft, VDshadowTopRight}) {
    shadow->hide();
  }
  framelessHandler.setMoveBarHeight(kHeaderHeight);
  framelessHandler.setBorderWidth(kResizeBorder);
}

CVorlaneDialog::~CVorlaneDialog() = default;

CVorlaneDialog::Context CVorlaneDialog::findContext(QWidget* parent) {
  for (QObject* ancestor = parent; ancestor; ancestor = ancestor->parent()) {
    if (ancestor->objectName() == kMainWindowName) return Context::MainWindow;
    if (ancestor->objectName() == kPreviewName) {
      previewParent = qobject_cast<QWidget*>(ancestor);
      return Context::Preview;
    }
  }
  return Context::Standalone;
}

void CVorlaneDialog::buildFrame() {
  VDgridLayout = new QGridLayout(this);
  VDgridLayout->setObjectName(QString("VDgridLayout"));
  VDgridLayout->setSpacing(0);
  VDgridLayout->setContentsMargins(0, 0, 0, 0);

  for (const ShadowPiece& piece : {ShadowPiece{&CVorlaneDialog::VDshadowTopLeft, "TopLeft", 0, 0, "bottom right"},
                                   ShadowPiece{&CVorlaneDialog::VDshadowTop, "Top", 0, 1, nullptr},
                                   ShadowPiece{&CVorlaneDialog::VDshadowTopRight, "TopRight", 0, 2, "bottom left"},
                                   ShadowPiece{&CVorlaneDialog::VDshadowLeft, "Left", 1, 0, nullptr}}) {
    addShadow(piece);
  }
  buildMainFrame();
  VDgridLayout->addWidget(VDmainFrame, 1, 1);
  for (const ShadowPiece& piece : {ShadowPiece{&CVorlaneDialog::VDshadowRight, "Right", 1, 2, nullptr},
                                   ShadowPiece{&CVorlaneDialog::VDshadowBtmLeft, "BtmLeft", 2, 0, "top right"},
                                   ShadowPiece{&CVorlaneDialog::VDshadowBtm, "Btm", 2, 1, nullptr},
                                   ShadowPiece{&CVorlaneDialog::VDshadowBtmRight, "BtmRight", 2, 2, "top left"}}) {
    addShadow(piece);
  }
}

void CVorlaneDialog::addShadow(const ShadowPiece& piece) {
  const QString place = QLatin1String(piece.place);
  const QString name = QString("VDshadow") + place;
  auto* frame = new QFrame(this);
  frame->setObjectName(name);
  if (piece.column != 1) frame->setFixedWidth(kShadowThickness);
  if (piece.row != 1) frame->setFixedHeight(kShadowThickness);
  QString style =
      QString("QFrame#%1 {\nbackground-image: url(:/Vorlane/Resources/DialogShadow-%2.png);\n").arg(name, place);
  if (piece.imagePosition) {
    style += QString("background-repeat: no-repeat;\nbackground-position: %1;\nborder: 0px transparent;\n}")
                 .arg(QLatin1String(piece.imagePosition));
  } else {
    style += QString("background-repeat: repeat-%1;\nborder: 0px transparent;\n\n}")
                 .arg(piece.row == 1 ? QLatin1Char('y') : QLatin1Char('x'));
  }
  frame->setStyleSheet(style);
  frameLook(frame);
  VDgridLayout->addWidget(frame, piece.row, piece.column);
  this->*piece.frame = frame;
}

void CVorlaneDialog::buildMainFrame() {
  VDmainFrame = new QFrame(this);
  VDmainFrame->setObjectName(QString("VDmainFrame"));
  VDmainFrame->setMinimumSize(40, 40);
  VDmainFrame->setStyleSheet(kBlueTheme);
  frameLook(VDmainFrame);
  VDMainVerticalLayout = new QVBoxLayout(VDmainFrame);
  VDMainVerticalLayout->setObjectName(QString("VDMainVerticalLayout"));
  VDMainVerticalLayout->setSpacing(2);
  VDMainVerticalLayout->setContentsMargins(0, 0, 0, 0);

  VDheaderWidget = new QWidget(VDmainFrame);
  VDheaderWidget->setObjectName(QString("VDheaderWidget"));
  VDheaderWidget->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  VDheaderWidget->setMinimumSize(0, kHeaderHeight);
  VDheaderWidget->setMaximumSize(QWIDGETSIZE_MAX, kHeaderHeight);
  VDheaderWidget->setStyleSheet(kHeaderStyle);
  VDHeaderHorizontalLayout = new QHBoxLayout(VDheaderWidget);
  VDHeaderHorizontalLayout->setObjectName(QString("VDHeaderHorizontalLayout"));
  VDHeaderHorizontalLayout->setSpacing(6);
  VDHeaderHorizontalLayout->setContentsMargins(10, 3, 5, 2);

  VDPrefixLabel = new HeaderLabel(VDheaderWidget, true);
  VDPrefixLabel->setObjectName(QString("VDPrefixLabel"));
  VDPrefixLabel->setStyleSheet(QString("color:white;"));
  VDHeaderHorizontalLayout->addWidget(VDPrefixLabel);
  VDtitleLabel = new HeaderLabel(VDheaderWidget, false);
  VDtitleLabel->setObjectName(QString("VDtitleLabel"));
  VDtitleLabel->setStyleSheet(QString("color: white;"));
  // The title takes the free room, so that it follows the prefix and the buttons are at the right.
  VDHeaderHorizontalLayout->addWidget(VDtitleLabel, 1);
  VDMainVerticalLayout->addWidget(VDheaderWidget);

  VDcontentWidget = new QWidget(VDmainFrame);
  VDcontentWidget->setObjectName(QString("VDcontentWidget"));
  auto* contentLayout = new QVBoxLayout(VDcontentWidget);
  contentLayout->setContentsMargins(1, 1, 1, 1);
  VDMainVerticalLayout->addWidget(VDcontentWidget);
}

void CVorlaneDialog::applyContext(Context context) {
  if (context != Context::MainWindow) {
    QString style = VDmainFrame->styleSheet();
    for (const auto& pair : kGreyReplacements) style.replace(pair[0], pair[1]);
    VDmainFrame->setStyleSheet(style);
  }
  if (context == Context::Standalone) {
    VDPrefixLabel->setText(tr("Nolva Reader Advanced Tools") + QString(" -"));
  } else {
    VDPrefixLabel->hide();
  }
}

bool CVorlaneDialog::VDisInPreview() const {
  // After setParent() the preview window may be gone.
  QObject* ancestor = parent();
  while (ancestor && ancestor != previewParent) ancestor = ancestor->parent();
  return ancestor && ancestor->objectName() == kPreviewName;
}

QSize CVorlaneDialog::roomFor(const QWidget* form, const QSize& stated) {
  layOut(this);
  writeBlackOnWhite(form);
  for (auto* button : form->findChildren<QAbstractButton*>()) keepTextWhole(button);
  for (auto* group : form->findChildren<QGroupBox*>()) keepTitleFree(group);
  resize(stated.expandedTo(VDMainVerticalLayout->totalMinimumSize()));
  layOut(this);
  for (auto* label : form->findChildren<QLabel*>()) {
    // A layout takes one line as the minimum height of a text of several lines.
    if (label->wordWrap()) label->setMinimumHeight(label->heightForWidth(label->width()));
  }
  layOut(this);
  return stated.expandedTo(VDMainVerticalLayout->totalMinimumSize());
}

void CVorlaneDialog::VDaddMainWidget(QWidget* form, bool fixedSize) {
  if (!form) return;
  // A fixed size deliberately leaves out the extra width.
  const QSize frame(fixedSize ? 0 : frameExtraWidth, frameExtraHeight);
  const QSize stated = form->size() + frame;
  VDcontentWidget->layout()->addWidget(form);
  VDcontentWidget->layout()->setContentsMargins(0, 0, 0, 0);
  const QSize size = roomFor(form, stated);
  fixedHeight = size.height();

  const QSize centred(size.width() - frame.width() + frameExtraWidth, fixedHeight);
  const QRect reference =
      VDisInPreview() ? previewParent->geometry() : QApplication::primaryScreen()->availableGeometry();
  setGeometry(QRect(centredTopLeft(QRect(QPoint(), centred), reference), centred));
  setMinimumSize(size);
  if (fixedSize) setMaximumSize(size);
  updateGeometry();
  framelessHandler.setWidgetResizable(!fixedSize);
  layOut(this);
}

CVorlaneHeaderButton* CVorlaneDialog::addHeaderButton(const HeaderButton& description) {
  auto* button = new CVorlaneHeaderButton(VDheaderWidget);
  button->setObjectName(QLatin1String(description.objectName));
  button->setAccessibleName(description.text);
  button->setFixedSize(24, 24);
  button->setFocusPolicy(Qt::NoFocus);
  QIcon icon;
  icon.addFile(resource(description.normalIcon), QSize(), QIcon::Normal, QIcon::Off);
  icon.addFile(resource(description.disabledIcon), QSize(), QIcon::Disabled, QIcon::On);
  button->setIcon(icon);
  button->setIconSize(QSize(description.iconSize, description.iconSize));
  button->setAutoRaise(true);
  button->setStyleSheet(headerButtonStyle());
  VDHeaderHorizontalLayout->addWidget(button);
  connect(button, SIGNAL(clicked()), this, description.slot);
  return button;
}

void CVorlaneDialog::VDaddCloseButton() {
  VDcloseButton = addHeaderButton(
      {"vorlaneHeaderCloseBtn", tr("Close"), 14, "WinClose.png", "WinClose_disabled.png", SLOT(reject())});
}

void CVorlaneDialog::VDaddTopButtons() {
  VDaddToActionListButton =
      addHeaderButton({"VDtoolbarAddToActionListButton", tr("Add to/Create new Action"), 20, "PaneActionList_extra.png",
                       "PaneActionList_disabled.png", SLOT(on_VDShowSaveDialog())});
  VDaddToActionListButton->setToolTip(VDaddToActionListButton->accessibleName());
  VDaddToFavoritesButton =
      addHeaderButton({"VDtoolbarAddToCollectionsButton", tr("Add to Favorites/Save settings"), 20, "Collection.png",
                       "Collection_disabled.png", SLOT(on_VDShowSaveCollectionDialog())});
  VDaddToFavoritesButton->setToolTip(VDaddToFavoritesButton->accessibleName());
}

void CVorlaneDialog::VDhideAddToActionListButton() {
  if (VDaddToActionListButton) VDaddToActionListButton->hide();
}

int CVorlaneDialog::exec() {
  return QDialog::exec();
}
