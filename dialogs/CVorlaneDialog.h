// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

#include "dialogs/CFramelessHandler.h"

class CVorlaneHeaderButton;
class QFrame;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QVBoxLayout;

/// The frameless dialog that every settings dialog derives from: a 30 px header with a title and buttons, by which the
/// user moves the dialog, and a content area for the subclass's form.
///
/// A subclass's constructor runs the shell's constructor, makes its form, sets VDtitleLabel's text, calls
/// VDaddMainWidget and then VDaddTopButtons and VDaddCloseButton, as it needs them; buttons appear in the order of the
/// calls. The forms name their content "main_widget" and a button strip "button_widget" to be drawn in the theme. The
/// settings dialog of an action leaves most of it to CSettingsDialogUtils.
///
/// The context is taken once from the parent chain, by object name: "VorlaneClass" is the host's main window,
/// "VorlanePreviewClass" its preview window, neither is a stand-alone dialog. Only the main window has the blue theme,
/// only a stand-alone dialog shows the host's name before the title.
class CVorlaneDialog : public QDialog {
  Q_OBJECT

 public:
  /// `flag` is kept for the subclass; the shell does not read it.
  CVorlaneDialog(QWidget* parent, bool flag);
  ~CVorlaneDialog() override;

  /// Puts the form into the content area. The dialog gets the form's size plus the shell's, and more where the form
  /// needs it, as with a large font; it is centred on the preview window or else on the primary screen. With
  /// `fixedSize` it cannot be resized, and its width is the form's alone; otherwise its size is the minimum. Texts of
  /// the form's labels, group boxes, radio buttons and check boxes become black, unless they have a colour of their
  /// own. Afterwards every widget of the form has its geometry. Null does nothing.
  void VDaddMainWidget(QWidget* form, bool fixedSize);
  /// Adds the header's close button, which rejects the dialog.
  void VDaddCloseButton();
  /// Adds the add-to-action-list and the add-to-favorites button. The subclass provides their slots
  /// on_VDShowSaveDialog() and on_VDShowSaveCollectionDialog().
  void VDaddTopButtons();
  /// Hides the add-to-action-list button, as a host can ask for; does nothing before VDaddTopButtons.
  void VDhideAddToActionListButton();

 public Q_SLOTS:
  /// Runs the dialog modally and returns QDialog::Accepted or QDialog::Rejected.
  int exec() override;

 protected:
  /// Whether the dialog was opened from a preview window that still is one.
  bool VDisInPreview() const;

 private:
  friend class CSettingsDialogUtils;

  enum class Context { Standalone, MainWindow, Preview };

  struct ShadowPiece;
  struct HeaderButton;
  Context findContext(QWidget* parent);
  void buildFrame();
  void addShadow(const ShadowPiece& piece);
  void buildMainFrame();
  void applyContext(Context context);
  QSize roomFor(const QWidget* form, const QSize& stated);
  CVorlaneHeaderButton* addHeaderButton(const HeaderButton& button);

  CFramelessHandler framelessHandler;

 protected:
  const bool shellFlag;  ///< the constructor's `flag`

 private:
  CVorlaneHeaderButton* VDcloseButton = nullptr;
  CVorlaneHeaderButton* VDaddToActionListButton = nullptr;
  CVorlaneHeaderButton* VDaddToFavoritesButton = nullptr;
  QGridLayout* VDgridLayout = nullptr;
  QFrame* VDshadowTopLeft = nullptr;
  QFrame* VDshadowTop = nullptr;
  QFrame* VDshadowTopRight = nullptr;
  QFrame* VDshadowLeft = nullptr;
  QFrame* VDshadowRight = nullptr;
  QFrame* VDshadowBtmLeft = nullptr;
  QFrame* VDshadowBtm = nullptr;
  QFrame* VDshadowBtmRight = nullptr;
  QFrame* VDmainFrame = nullptr;
  QVBoxLayout* VDMainVerticalLayout = nullptr;
  QWidget* VDheaderWidget = nullptr;
  QHBoxLayout* VDHeaderHorizontalLayout = nullptr;
  QLabel* VDPrefixLabel = nullptr;

 protected:
  QLabel* VDtitleLabel = nullptr;  ///< the header's title; the subclass sets its text

 private:
  QWidget* VDcontentWidget = nullptr;

 protected:
  QWidget* previewParent = nullptr;  ///< the ancestor that is the preview window, or null

 private:
  int fixedHeight = 0;
  int frameExtraHeight = 0;  // what the shell adds to the form's height and width
  int frameExtraWidth = 0;
};
