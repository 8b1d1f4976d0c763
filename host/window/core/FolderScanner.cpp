// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FolderScanner.h"

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <exception>
#include <fstream>
#include <mutex>
#include <QDir>
#include <QSysInfo>
#include <utility>

#include "host/base/NativeName.h"
#include "host/files/FolderWalk.h"
#include "host/window/core/CanonicalNames.h"
#include "host/window/core/ShownText.h"

namespace {

// Batches are taken one in a turn of the event loop, so that it stays short with views that sort what comes.
constexpr int kMostInBatch = 5000;
constexpr std::chrono::milliseconds kBatchInterval(4);
constexpr int kMostProblems = 100;

struct GivenUp {};

// WalkFolder takes a plain function. It is called for every name, so that a walk over many other files can be given up.
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

// Without "." parts and doubled slashes, which mean nothing; what ".." means depends on links.
QString Plain(const QString& path) {
  QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
  parts.removeAll(QStringLiteral("."));
  return QLatin1Char('/') + parts.join(QLatin1Char('/'));
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

// What runs in the thread. The scanner takes from it what was found.
class FolderScanner::Search {
 public:
  explicit Search(const QStringList& paths) : paths_(paths) {}

  void GiveUp() { givenUp_ = true; }
  bool IsOver() const { return isOver_; }

  void Run() {
    gGivenUp = &givenUp_;
    try {
      for (const QString& path : paths_) Visit(NativeName::ToBytes(path).toStdString());
    } catch (const GivenUp&) {
    } catch (const std::exception& exception) {
      Report({}, QString::fromUtf8(exception.what()));
    }
    if (problemCount_ > kMostProblems) AddProblem(tr("More such problems: %1").arg(problemCount_ - kMostProblems));
    isOver_ = true;
  }

  QVector<FoundFile> TakeFound() {
    const std::lock_guard lock(mutex_);
    const QVector<FoundFile> batch = found_.mid(next_, kMostInBatch);
    next_ += batch.size();
    return batch;
  }

  QStringList TakeProblems() {
    const std::lock_guard lock(mutex_);
    return std::exchange(problems_, {});
  }

 private:
  void Visit(const std::string& path) {
    if (givenUp_) throw GivenUp();
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) return Report(path, qt_error_string(errno));
    if (S_ISDIR(status.st_mode)) return Walk(path);
    if (!S_ISREG(status.st_mode)) return Report(path, tr("not a file"));
    if (!IsPdfName(path) && !HasPdfHeader(path)) return Report(path, tr("not a PDF file"));
    Add(path, names_.Of(path));
  }

  void Walk(const std::string& folder) {
    const int below = folder == "/" ? 1 : NativeName::ToText(folder).size() + 1;
    bool any = false;
    WalkFolder(folder, {IsWanted}, [&](const FolderEntry& entry) {
      any = true;
      if (entry.error != 0) return Report(entry.path, qt_error_string(entry.error));
      if (!entry.status) return Report(entry.path, tr("the link leads to no file"));
      Add(entry.path, entry.isLink ? names_.Of(entry.path) : names_.OfFile(entry.path), below);
    });
    if (!any) Report(folder, tr("no PDF file in this folder"));
  }

  void Add(const std::string& path, const std::string& canonical, int below = 0) {
    const QString name = NativeName::ToText(path);
    const FoundFile file{name, canonical == path ? name : NativeName::ToText(canonical), below};
    const std::lock_guard lock(mutex_);
    found_.append(file);
  }

  void Report(const std::string& path, const QString& why) {
    if (++problemCount_ > kMostProblems) return;
    AddProblem(path.empty() ? why : ShownText(NativeName::ToText(path)) + QStringLiteral(": ") + why);
  }

  void AddProblem(const QString& problem) {
    const std::lock_guard lock(mutex_);
    problems_ += problem;
  }

  const QStringList paths_;
  std::atomic<bool> givenUp_{false};
  CanonicalNames names_;
  int problemCount_ = 0;
  std::atomic<bool> isOver_{false};
  std::mutex mutex_;  // for what follows; the thread sanitizer does not see Qt's
  QVector<FoundFile> found_;
  int next_ = 0;  // of these, the first that was not taken
  QStringList problems_;
};

FolderScanner::FolderScanner(QObject* parent) : QObject(parent) {
  qRegisterMetaType<QVector<FoundFile>>();
  deliver_.setInterval(kBatchInterval);
  connect(&deliver_, &QTimer::timeout, this, &FolderScanner::Deliver);
}

FolderScanner::~FolderScanner() {
  if (!search_) return;
  search_->GiveUp();
  thread_.join();
}

void FolderScanner::Scan(const QStringList& paths) {
  for (const QString& path : paths) waiting_ += Plain(QDir::current().absoluteFilePath(path));
  cancelled_ = false;
  if (!search_ && !waiting_.isEmpty()) Begin();
}

bool FolderScanner::IsRunning() const {
  return search_ != nullptr;
}

void FolderScanner::Begin() {
  search_ = std::make_unique<Search>(std::exchange(waiting_, {}));
  thread_ = std::thread([search = search_.get()] { search->Run(); });
  deliver_.start();
}

void FolderScanner::Deliver() {
  const bool isOver = search_->IsOver();
  const QVector<FoundFile> files = search_->TakeFound();
  const QStringList problems = search_->TakeProblems();
  if (isGivenUp_) return isOver ? End() : void();
  found_ += files.size();
  if (!files.isEmpty()) emit found(files);
  for (const QString& message : problems) emit problem(message);
  if (isOver && files.isEmpty()) End();
}

void FolderScanner::End() {
  deliver_.stop();
  thread_.join();
  search_.reset();
  isGivenUp_ = false;
  if (!waiting_.isEmpty()) return Begin();
  const int files = std::exchange(found_, 0);
  emit finished(files, std::exchange(cancelled_, false));
}

void FolderScanner::Cancel() {
  if (!search_) return;
  cancelled_ = true;
  isGivenUp_ = true;
  waiting_.clear();
  search_->GiveUp();
}

QStringList FolderScanner::PathsIn(const QMimeData& data) {
  for (const char* format : {"text/uri-list", "x-special/gnome-copied-files"}) {
    QStringList paths = LocalPaths(data.data(QLatin1String(format)));
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
