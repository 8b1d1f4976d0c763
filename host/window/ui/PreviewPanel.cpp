// SPDX-License-Identifier: Apache-2.0
#include "host/window/ui/PreviewPanel.h"

#include <algorithm>
#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "host/window/ui/MutedLabel.h"

namespace {

constexpr int kMostExpanded = 20;

enum Column { kPage, kLink, kTarget };

QLabel* MakeLabel(const char* objectName) {
  auto* const label = new QLabel;
  label->setObjectName(QLatin1String(objectName));
  label->setTextFormat(Qt::PlainText);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  label->setWordWrap(true);
  return label;
}

QString NameOfViewer(const QString& key) {
  if (key == QLatin1String("pdfjs")) return QStringLiteral("Firefox");
  if (key == QLatin1String("pdfium")) return QStringLiteral("Chrome");
  if (key == QLatin1String("mupdf")) return QStringLiteral("MuPDF");
  if (key == QLatin1String("poppler")) return QStringLiteral("Evince and Okular");
  return key;
}

// Each target once, with the viewers that lead there.
QVector<QPair<QString, QStringList>> ViewersByTarget(const PreviewLink& link) {
  QVector<QPair<QString, QStringList>> targets;
  for (auto viewer = link.viewers.begin(); viewer != link.viewers.end(); ++viewer) {
    const auto known = std::find_if(targets.begin(), targets.end(),
                                    [&](const auto& target) { return target.first == viewer.value(); });
    if (known != targets.end()) {
      known->second += NameOfViewer(viewer.key());
    } else {
      targets += {viewer.value(), {NameOfViewer(viewer.key())}};
    }
  }
  return targets;
}

}  // namespace

PreviewPanel::PreviewPanel(QWidget* parent) : QWidget(parent) {
  setAccessibleName(tr("Preview"));
  title_ = MakeLabel("previewTitle");
  title_->setWordWrap(false);
  QFont bold = font();
  bold.setBold(true);
  title_->setFont(bold);
  busy_ = new MutedLabel(tr("Looking…"));
  hint_ = new MutedLabel;
  hint_->setObjectName(QStringLiteral("previewHint"));
  hint_->setWordWrap(true);
  hint_->setAlignment(Qt::AlignCenter);
  before_ = MakeLabel("before");
  after_ = MakeLabel("after");
  for (QLabel* url : {before_, after_}) url->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  after_->setFont(bold);
  warnings_ = MakeLabel("warnings");
  warnings_->setTextFormat(Qt::RichText);
  linksTitle_ = MakeLabel("linksTitle");
  links_ = new QTreeWidget;
  links_->setObjectName(QStringLiteral("links"));
  links_->setAccessibleName(tr("Relative links"));
  links_->setHeaderLabels({tr("Page"), tr("Link"), tr("Leads to")});
  links_->setTextElideMode(Qt::ElideMiddle);
  links_->setUniformRowHeights(true);
  links_->setFrameShape(QFrame::NoFrame);
  links_->setMinimumHeight(fontMetrics().height() * 4);
  const int letter = fontMetrics().averageCharWidth();
  links_->setColumnWidth(kPage, 12 * letter);
  links_->setColumnWidth(kLink, 34 * letter);

  auto* const urls = new QGridLayout;
  urls->setColumnStretch(1, 1);
  urls->addWidget(new QLabel(tr("Base URL now:")), 0, 0, Qt::AlignTop);
  urls->addWidget(before_, 0, 1);
  urls->addWidget(new QLabel(tr("Afterwards:")), 1, 0, Qt::AlignTop);
  urls->addWidget(after_, 1, 1);
  auto* const page = new QWidget;
  auto* const layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(urls);
  layout->addWidget(warnings_);
  layout->addWidget(linksTitle_);
  layout->addWidget(links_, 100);
  layout->addStretch(1);  // without links

  pages_ = new QStackedWidget;
  pages_->addWidget(hint_);
  auto* const area = new QScrollArea;
  area->setFrameShape(QFrame::NoFrame);
  area->setWidgetResizable(true);
  area->setFocusPolicy(Qt::NoFocus);
  area->setWidget(page);
  pages_->addWidget(area);
  auto* const head = new QHBoxLayout;
  head->addWidget(title_, 1);
  head->addWidget(busy_);
  auto* const all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addLayout(head);
  all->addWidget(pages_, 1);
  warnings_->setTextInteractionFlags(Qt::TextBrowserInteraction);
  connect(warnings_, &QLabel::linkActivated, this, &PreviewPanel::slashWanted);
  connect(hint_, &QLabel::linkActivated, this, &PreviewPanel::passwordWanted);
  ShowHint(tr("Select a file to see what would change in it."));
}

void PreviewPanel::ShowHint(const QString& text) {
  title_->setText(tr("Preview"));
  busy_->hide();
  hint_->setTextFormat(Qt::PlainText);
  hint_->setText(text);
  pages_->setCurrentIndex(0);
}

void PreviewPanel::ShowBusy(const QString& file) {
  title_->setText(tr("Preview: %1").arg(QFileInfo(file).fileName()));
  busy_->show();
}

void PreviewPanel::Show(const PreviewData& preview, bool lacksSlash) {
  if (!preview.error.isEmpty()) ShowHint(preview.error);
  title_->setText(tr("Preview: %1").arg(QFileInfo(preview.file).fileName()));
  busy_->hide();
  if (preview.needsPassword) {
    hint_->setTextFormat(Qt::RichText);
    hint_->setText(preview.error.toHtmlEscaped() +
                   QStringLiteral("<p><a href=\"#\">%1</a></p>").arg(tr("Enter password…")));
  }
  if (!preview.error.isEmpty()) return;
  ShowUrls(preview, lacksSlash);
  ShowLinks(preview);
  pages_->setCurrentIndex(1);
}

void PreviewPanel::ShowUrls(const PreviewData& preview, bool lacksSlash) {
  before_->setText(preview.before.isEmpty() ? tr("none") : preview.before);
  QString after = preview.after.isEmpty() ? tr("none") : preview.after;
  if (!preview.wouldChange) after += QStringLiteral("  ") + tr("(nothing changes in this file)");
  after_->setText(after);
  QStringList hints;
  for (const QString& warning : preview.warnings) {
    hints += QStringLiteral("<p style=\"margin:2px 0\">⚠ %1").arg(warning.toHtmlEscaped());
  }
  // The warning of the missing slash comes first.
  if (lacksSlash && !hints.isEmpty()) hints[0] += QStringLiteral(" <a href=\"#\">%1</a>").arg(tr("Add the slash"));
  warnings_->setText(hints.join(QString()));
  warnings_->setVisible(!hints.isEmpty());
}

void PreviewPanel::ShowLinks(const PreviewData& preview) {
  links_->clear();
  links_->setVisible(!preview.links.isEmpty());
  if (preview.relativeLinks == 0) {
    linksTitle_->setText(tr("It has no relative links, so the base URL leads nowhere else."));
    return;
  }
  QString title = tr("%n relative link(s)", nullptr, preview.relativeLinks);
  if (preview.disagreeing > 0)
    title += QStringLiteral(", ") + tr("%n of them differ between viewers", nullptr, preview.disagreeing);
  if (preview.links.size() < preview.relativeLinks)
    title += QStringLiteral("; ") + tr("the first %1 are shown").arg(preview.links.size());
  linksTitle_->setText(title);
  const QIcon warning = style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this);
  QList<QTreeWidgetItem*> items;
  for (const PreviewLink& link : preview.links) {
    auto* const item = new QTreeWidgetItem({link.page > 0 ? QString::number(link.page) : QStringLiteral("–"), link.uri,
                                            link.agree ? link.target : tr("Viewers differ")});
    item->setToolTip(kTarget, link.target);
    item->setToolTip(kLink, link.uri);
    items += item;
    if (link.agree) continue;
    item->setIcon(kTarget, warning);
    for (const auto& [target, viewers] : ViewersByTarget(link)) {
      auto* const line = new QTreeWidgetItem(
          item, {QString(), viewers.join(QStringLiteral(", ")), target.isEmpty() ? tr("no link") : target});
      line->setTextAlignment(kLink, Qt::AlignRight);
      line->setToolTip(kLink, viewers.join(QLatin1Char('\n')));
      line->setToolTip(kTarget, target);
    }
  }
  links_->setRootIsDecorated(preview.disagreeing > 0);
  links_->addTopLevelItems(items);
  if (preview.disagreeing <= kMostExpanded) links_->expandAll();
}
