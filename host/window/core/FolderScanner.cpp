// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FolderScanner.h"

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <exception>
#include <fstream>
#include <QDir>
#include <QElapsedTimer>
#include <QSysInfo>
#include <utility>

#include "host/base/NativeName.h"
#include "host/files/FolderWalk.h"
#include "host/window/core/CanonicalNames.h"
#include "host/window/core/ShownText.h"

namespace {

constexpr int kMostInBatch = 500;
constexpr qint64 kBatchMilliseconds = 100;
constexpr int kMostProblems = 100;

struct GivenUp {};

// WalkFolder takes a plain function, which also lets a walk over many other files be given up.
thread_local const std::atomic<bool>* gGivenUp = nullptr;

bool IsWanted(std::string_view name) {
  if (*gGivenUp) throw GivenUp();
  return IsPdfName(name);
}

// A file that was named by itself may have any name. Readers also take a header that comes after other bytes.
bool HasPdfHeader(const std::string& file) {
  char start[1024];
  std::ifstream stream(file, std::ios::binary);
  stream.read(start, sizeof start);
  const std::string_view text(start, static_cast<std::size_t>(stream.gcount()));
  return text.find("%PDF-") != std::string_view::npos;
}

std::string_view View(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

// The local path of a file URL (RFC 8089), or an empty text.
QString LocalPath(const QByteArray& url) {
  static const QByteArray scheme("file:");
  if (qstrnicmp(url.constData(), scheme.constData(), static_cast<uint>(scheme.size())) != 0) return {};
  QByteArray path = url.mid(scheme.size());
  if (path.startsWith("//")) {
    const int slash = path.indexOf('/', 2);
    if (slash < 0) return {};
    const QByteArray host = path.mid(2, slash - 2).toLower();
    const bool isHere = host.isEmpty() || host == "localhost" || host == QSysInfo::machineHostName().toUtf8().toLower();
    if (!isHere) return {};
    path = path.mid(slash);
  }
  path = QByteArray::fromPercentEncoding(path);
  return path.startsWith('/') && !path.contains('\0') ? NativeName::ToText(View(path)) : QString();
}

QStringList LocalPaths(const QByteArray& lines) {
  QStringList paths;
  for (const QByteArray& line : lines.split('\n')) {
    const QString path = LocalPath(line.trimmed());
    if (!path.isEmpty()) paths += path;
  }
  return paths;
}

}  // namespace

// What runs in the thread.
class FolderScanner::Search {
 public:
  Search(FolderScanner& scanner, const QStringList& paths) : scanner_(scanner), paths_(paths) {}

  void GiveUp() { givenUp_ = true; }
  bool IsGivenUp() const { return givenUp_; }

  void Run() {
    gGivenUp = &givenUp_;
    sinceBatch_.start();
    try {
      for (const QString& path : paths_) Visit(NativeName::ToBytes(path).toStdString());
    } catch (const GivenUp&) {
    } catch (const std::exception& exception) {
      Report({}, QString::fromUtf8(exception.what()));
    }
    SendBatch();
    if (problems_ > kMostProblems) Send([this] { emit scanner_.problem(tr("More such problems: %1").arg(More())); });
  }

 private:
  int More() const { return problems_ - kMostProblems; }

  // Runs in the scanner's thread, unless the search was given up meanwhile.
  template <typename Function>
  void Send(Function function) {
    QMetaObject::invokeMethod(
        &scanner_,
        [this, function] {
          if (!givenUp_) function();
        },
        Qt::QueuedConnection);
  }

  void Visit(const std::string& path) {
    if (givenUp_) throw GivenUp();
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return Report(path, qt_error_string(errno));
    if (S_ISDIR(status.st_mode)) return Walk(path);
    if (!S_ISREG(status.st_mode)) return Report(path, tr("not a file"));
    if (!IsPdfName(path) && !HasPdfHeader(path)) return Report(path, tr("not a PDF file"));
    Add(path);
  }

  void Walk(const std::string& folder) {
    bool any = false;
    WalkFolder(folder, {IsWanted}, [&](const FolderEntry& entry) {
      any = true;
      if (entry.error != 0) return Report(entry.path, qt_error_string(entry.error));
      if (!entry.status) return Report(entry.path, tr("the link leads to no file"));
      Add(entry.path);
    });
    if (!any) Report(folder, tr("no PDF file in this folder"));
  }

  void Add(const std::string& path) {
    batch_.append({NativeName::ToText(path), NativeName::ToText(names_.Of(path))});
    if (batch_.size() >= kMostInBatch || sinceBatch_.elapsed() >= kBatchMilliseconds) SendBatch();
  }

  void SendBatch() {
    sinceBatch_.start();
    if (batch_.isEmpty()) return;
    Send([this, batch = std::exchange(batch_, {})] {
      scanner_.found_ += batch.size();
      emit scanner_.found(batch);
    });
  }

  void Report(const std::string& path, const QString& why) {
    if (++problems_ > kMostProblems) return;
    const QString message = path.empty() ? why : ShownText(NativeName::ToText(path)) + QStringLiteral(": ") + why;
    Send([this, message] { emit scanner_.problem(message); });
  }

  FolderScanner& scanner_;
  const QStringList paths_;
  std::atomic<bool> givenUp_{false};
  CanonicalNames names_;
  QVector<FoundFile> batch_;
  QElapsedTimer sinceBatch_;
  int problems_ = 0;
};

FolderScanner::FolderScanner(QObject* parent) : QObject(parent) {
  qRegisterMetaType<QVector<FoundFile>>();
}

FolderScanner::~FolderScanner() {
  if (!thread_) return;
  search_->GiveUp();
  thread_->wait();
}

void FolderScanner::Scan(const QStringList& paths) {
  for (const QString& path : paths) waiting_ += QDir::current().absoluteFilePath(path);
  cancelled_ = false;
  if (!thread_ && !waiting_.isEmpty()) Begin();
}

bool FolderScanner::IsRunning() const {
  return thread_ != nullptr;
}

void FolderScanner::Begin() {
  search_ = std::make_unique<Search>(*this, std::exchange(waiting_, {}));
  thread_.reset(QThread::create([search = search_.get()] { search->Run(); }));
  connect(thread_.get(), &QThread::finished, this, &FolderScanner::End);
  thread_->start();
}

void FolderScanner::End() {
  thread_->wait();
  thread_.reset();
  search_.reset();
  if (!waiting_.isEmpty()) return Begin();
  const int files = std::exchange(found_, 0);
  emit finished(files, std::exchange(cancelled_, false));
}

void FolderScanner::Cancel() {
  if (!thread_) return;
  cancelled_ = true;
  waiting_.clear();
  search_->GiveUp();
}

QStringList FolderScanner::PathsIn(const QMimeData& data) {
  for (const char* format : {"text/uri-list", "x-special/gnome-copied-files"}) {
    const QStringList paths = LocalPaths(data.data(QLatin1String(format)));
    if (!paths.isEmpty()) return paths;
  }
  QStringList paths;
  for (const QString& line : data.text().split(QLatin1Char('\n'))) {
    const QString path = line.trimmed();
    const QString local = LocalPath(path.toUtf8());
    if (!local.isEmpty()) paths += local;
    if (path.startsWith(QLatin1Char('/'))) paths += path;
  }
  return paths;
}
