// SPDX-License-Identifier: Apache-2.0
// DragSource FILE...: a window at the screen's left bottom from which the files can be dragged, as from a file manager.
#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>

namespace {

class Files : public QLabel {
 public:
  explicit Files(const QStringList& files) {
    for (const QString& file : files) urls_ += QUrl::fromLocalFile(file);
    setWindowTitle(QStringLiteral("Files to drag"));
  }

 private:
  void mouseMoveEvent(QMouseEvent*) override {
    auto* drag = new QDrag(this);
    auto* files = new QMimeData;
    files->setUrls(urls_);
    drag->setMimeData(files);
    drag->exec(Qt::CopyAction);
  }

  QList<QUrl> urls_;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  Files files(QCoreApplication::arguments().mid(1));
  files.setGeometry(20, 760, 200, 100);
  files.show();
  return QApplication::exec();
}
