// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <QColor>
#include <QDir>
#include <QIcon>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

class QComboBox;
class QFont;
class QLabel;
class QTextEdit;

/// The commands of the document-splitting actions; a command's number is its position from 0. It must not be changed.
/// Global objects may use it before main().
extern QStringList gCommandsList;

/// What actions and their dialogs share. All members are static. Those that use widgets, fonts, icons or settings files
/// are for the GUI thread; the others are pure. Errors are reported by the results only. No member keeps a settings
/// file open. Settings maps belong to the caller.
///
/// Page ranges: a page-range text is a list of items separated by ",": a 1-based page number ("7") or two joined by "-"
/// ("3-9"). Validate what the user typed with ValidatePageRange(); expand it with GetPageList() once the page count is
/// known; CollectPageList() turns the pages into runs of consecutive ones.
///
/// Remembered locations and links are kept in "<settings folder>/LastVisitedLocations.vsf" under a key that the caller
/// chooses, one for each purpose; locations and links share the keys. A value that cannot be read counts as never
/// saved; one that cannot be written is lost.
///
/// Pickers: each function fills a combo box, which owns its new model and view; a second call replaces them. Call it
/// when the combo box has its width: the popup is made 2 pixels narrower. A null combo box does nothing.
class CActionUtils {
 public:
  CActionUtils() = delete;

  // ---- Folders ----

  /// CUtils::GetSettingsFolder().
  static QString GetSettingsFolder();
  /// CUtils::GetCollectionsFolder().
  static QString GetCollectionsFolder();
  /// CUtils::GetSequenceFolder().
  static QString GetSequenceFolder();
  /// CUtils::GetAppDataToolsFolder(), with a trailing slash.
  static QString GetVorlaneAppDataFolder();

  // ---- Action lists ----

  /// Stores an action in an action list, "<sequence folder>/<name with each space as "_">.xqq". `*prefs` holds the
  /// action's settings, its "ActionName", and what the user chose: "ActionListName" ("Action" when missing; no
  /// character but the space is changed or checked, so a "/" leads into a folder), "ActionListCategory" and
  /// "ActionListOverwrite".
  ///
  /// Without overwriting, an existing list gets the action, with the whole map, under the lowest free number; its name
  /// and category stay. Otherwise the list is made anew with this one action, and the four keys named above are removed
  /// from `*prefs` and not stored with the action.
  ///
  /// Errors are not reported. Lines of an existing list that are not settings are lost when it is appended to. A list
  /// that cannot be replaced (a full disk, a read-only folder) stays as it was, and so does `*prefs`. A null map does
  /// nothing.
  static void SaveAsCustomActionList(QMap<QString, QVariant>* prefs);

  /// "Default", "Favorites" and then every other category found in the sequence folder's lists, in directory order,
  /// not sorted. Of spellings that differ in case only the first one met is listed.
  static QStringList GetActionListCategories();

  // ---- Page ranges ----

  /// True for a well-formed text; spaces are ignored. Numbers are digits that do not begin with "0", an item holds one
  /// "-" at most, and the text may end with "," but not with "-". A range has to ascend ("4-4" does not) unless
  /// `allowDescending` is true. The page count is not looked at.
  static bool ValidatePageRange(QString text, bool allowDescending);

  /// True when each of the texts separated by ";" is well formed, with descending and equal ranges allowed; an empty
  /// one is not.
  static bool ValidateSplitPageRange(QString text);

  /// Adds the pages that a text names to `*pages` and sorts it, ascending. Pages that are in it already stay and are
  /// not added again. False, with `*pages` untouched, only for an empty text.
  ///
  /// `pageCount` limits single pages and the first page of a range, but not its last page: of 10 pages, "8-12" names 8
  /// to 12. A descending range names nothing.
  ///
  /// `skipOdd` and `skipEven` exclude pages. An excluded single page is read again from its next digit on: "15" without
  /// odd pages is read as 15, as 5, and then as an empty text, which is page 0, even, and taken. After its last digit
  /// the whole rest of the text is read in the same way. When all of that is excluded too ("4" without even pages), the
  /// expansion ends there.
  ///
  /// The text is not checked: what QString::toInt() does not read as a number is page 0, and pages below 1 are not
  /// filtered out. A range takes memory for all its pages, so check its end against the document first. Throws
  /// std::bad_alloc, with `*pages` untouched, when a list cannot hold the pages. A null `pages` is not filled.
  static bool GetPageList(const QString& text, int pageCount, bool skipOdd, bool skipEven, QList<int>* pages);

  /// Appends the runs of consecutive pages in `*pages`, sorted ascending, to `*runs`: the first page and the number of
  /// pages of each, last run first. [1, 2, 3, 5] gives [5, 1, 1, 3]. A null pointer does nothing.
  static void CollectPageList(QList<int>* pages, QList<int>* runs);

  // ---- File search and file names ----

  /// The absolute paths of the files in `dir` whose suffix, the text after the last ".", is one of `suffixes` ("pdf",
  /// not ".pdf"; case does not matter). The names are in case-sensitive order; with `recursive` a folder's files come
  /// at the folder's place in that order. Symbolic links are neither listed nor followed. Hidden entries and what
  /// cannot be read are left out. A name filter of `dir` holds for its own entries only. Backslashes become slashes.
  static QStringList SearchFilesInDir(QDir dir, QStringList suffixes, bool recursive);

  /// `number` in base 10, with "0" before it until it is `width` characters long; a minus sign counts as one of them
  /// and follows the zeros: -5 with width 4 is "00-5".
  static QString GetStringWithLeadingZeroesFromNumber(int number, int width);
  /// The same for a given text.
  static QString GetStringWithLeadingZeroesFromString(QString digits, int width);

  /// `path` when nothing exists there, otherwise the first of "<path before its last "."> (<n>).<suffix>", n = 1, 2, …,
  /// where nothing exists. The last "." is that of the whole path, folders included, so pass paths with a suffix; a
  /// path without any "." is returned as it is.
  static QString AppendCopyNumberToFilename(QString path);

  /// Removes white space from both ends, and every tab, line feed, carriage return and < > : " / \ | ? * from `*name`.
  /// What is left may be empty, "." or "..", or longer than a file name can be. Null does nothing.
  static void FixStringForFilename(QString* name);

  /// `path` with every "%ALLUSERSPROFILE%" replaced by "<folder of the users' homes>/All Users/", or by
  /// ".../All Users/Application Data/" where the homes are in "Documents and Settings".
  static QString ReplaceEnvironmentPaths(QString path);

  /// The nearest integer; exact halves go down (2.5 gives 2, -2.5 gives -3). The nearest int for a value beyond its
  /// range, 0 for one that is not a number.
  static int Round(double value);

  // ---- Remembered locations and links ----

  /// Remembers a folder or file path; an empty one too.
  static void SaveLastVisitedLocation(QString key, QString location);
  /// The remembered path, or the user's desktop folder when there is none under that key.
  static QString GetLastVisitedLocation(QString key);

  /// Remembers a link as the newest. Each link is kept once (case matters), and five at most.
  static void SaveLastEnteredLink(QString key, QString link);
  /// The remembered links, newest first.
  static QStringList GetLastEnteredLinks(QString key);

  // ---- Picker combo boxes ----

  /// Eleven colours with icons, "Black" to "Custom...", and "(none)" before them if wanted. The colour is the item's
  /// data under Qt::UserRole + 1; "Custom..." has none, but after "(none)" white under Qt::UserRole.
  static void SetupColorPickerComboBox(QComboBox* combo, bool withNone);
  /// The pen styles solid, dash, dot, dash-dot and dash-dot-dot, as icons without text.
  static void SetupLineStylePickerComboBox(QComboBox* combo);
  /// "(none)", then single, double, thick, dotted, dashed and dash-dotted lines, as icons without text.
  static void SetupUnderlineStylePickerComboBox(QComboBox* combo);
  /// Line weights from "0.1" to "6" points; the text is the weight.
  static void SetupLineWeightPickerComboBox(QComboBox* combo);
  /// "Arial", "Times New Roman" and "Courier".
  static void SetupStandardFontsComboBox(QComboBox* combo);
  /// The fonts that the PDF library finds on this machine, in its order; none when the library cannot be loaded.
  static void SetupSystemFontsComboBox(QComboBox* combo);

  /// The colour at a position of the colour picker with "(none)", that is 1 for black; black for every other position.
  /// Without "(none)" add 1 to the combo box's index.
  static QColor GetColorPickerColor(int index);
  /// The position of a colour in the picker with "(none)"; 11, "Custom...", for one that it does not name. Colours are
  /// equal when model and components, alpha included, are.
  static int GetColorPickerIndex(QColor color);

  /// The dash pattern of a border of `width` points: lengths separated by spaces, for the styles 1 long dashes, 2 short
  /// dashes, 3 dash-dot and 4 dash-dot-dot; "invalid" for any other style.
  static QString GetBorderDash(int style, double width);

  // ---- Text ----

  /// The height in pixels of rich text laid out in `font` and wrapped at `width` pixels; -1 does not wrap.
  static double GetTextItemHeight(const QFont& font, const QString& html, double width);

  /// Draws plain text, black on transparent, into an image of `width` x `height` pixels (fractions cut off) and adds
  /// it, scaled to fit 128 x 128, to the icon's normal images. A side below 1 adds nothing. An image that would take
  /// more than 256 MiB is painted at a smaller scale.
  static void GenerateTextItemIcon(double width, double height, const QString& text, QIcon* icon);

  // ---- Split commands ----

  /// The number of a command of gCommandsList, in upper or lower case; -1 for an unknown one.
  static int SplitComGetCommandIndex(QString command);
  /// The command of that number, "INVALID_INDEX" when there is none.
  static QString SplitComGetCommandString(int number);

  // ---- Help and tool icons ----

  /// Sets where help is shown. A settings dialog calls it once its form is built, and again, with null, before the
  /// widgets are destroyed. They are not owned, and the calls below use them without a check.
  static void SetTargetLabels(QLabel* navBar, QTextEdit* info);
  /// Shows the page ":/Vorlane/Resources/HelpFiles/<fileName>", decoded as it declares itself; an unknown one shows an
  /// empty page.
  static void SetHelp(QString fileName);
  /// Shows an HTML text as the help page.
  static void SetHelpHtml(QString html);
  /// Shows the name of the current section.
  static void SetCurrentSection(QString section);

  /// The icon ":/Vorlane/Resources/Tools/<fileName>"; it draws nothing, and is not null, when there is none of that
  /// name.
  static QIcon GetIconForTool(QString fileName);

  /// Set by SetTargetLabels(): the line that names the current section, and the help page.
  static QLabel* mNavBarLabel;
  /// See mNavBarLabel.
  static QTextEdit* mInfoLabel;
};
