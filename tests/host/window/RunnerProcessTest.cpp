// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <QDir>
#include <QElapsedTimer>

#include "host/window/core/RunnerProcess.h"
#include "tests/host/window/WindowTools.h"

namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

// One run of the program and what it said.
class Watched {
 public:
  Watched() {
    QObject::connect(&process, &RunnerProcess::recordsReceived, [this](const QVector<RunnerRecord>& some) {
      records += some;
      mostAtOnce = std::max(mostAtOnce, some.size());
    });
    QObject::connect(&process, &RunnerProcess::finished, [this](const RunnerResult& last) {
      EXPECT_FALSE(result) << "it finished twice";
      result = last;
    });
  }
  RunnerResult Run(const RunnerRequest& request = RunnerRequest()) {
    result.reset();
    process.Start(request);
    EXPECT_FALSE(result) << "it finished while it was being started";
    return Finish();
  }
  RunnerResult Finish() {
    EXPECT_TRUE(Await([this] { return result.has_value(); }));
    EXPECT_FALSE(process.IsRunning());
    return *result;
  }

  RunnerProcess process;
  QVector<RunnerRecord> records;
  int mostAtOnce = 0;
  std::optional<RunnerResult> result;
};

}  // namespace

TEST(RunnerProcess, SaysWhyTheProgramDidNotDoItsWork) {
  const struct {
    const char* script;
    int exitCode;
    const char* error;  // "": none
  } cases[] = {
      {"exit 0", 0, ""},
      {"exit 1", 1, ""},
      {"echo 'vorlane-run: No file is given.' >&2; exit 2", 2, "No file is given."},
      {"echo 'error while loading libQt.so' >&2; exit 127", 127, "127. error while loading libQt.so"},
      {"kill -SEGV $$", -1, "signal 11"},
      {"kill -KILL $$", -1, "signal 9"},
      {"exit 143", 143, "interrupted"},
      {"echo garbage; echo '[1]'; echo '{\"a\":1'", 0, "(3)"},
      {"printf '{\"a\":1}'", 0, ""},  // a last line without its end
  };
  for (const auto& each : cases) {
    const Runner runner(each.script);
    const RunnerResult result = Watched().Run();
    EXPECT_EQ(result.exitCode, each.exitCode) << each.script;
    EXPECT_THAT(result.error.toStdString(), HasSubstr(each.error)) << each.script;
    EXPECT_EQ(result.error.isEmpty(), *each.error == '\0') << result.error.toStdString();
  }
}

TEST(RunnerProcess, SaysThatTheProgramIsMissing) {
  const Runner runner("exit 0");
  for (const char* program : {"/nowhere/vorlane-run", "/etc/passwd"}) {
    RunnerProcess::SetProgramFile(program);
    const RunnerResult result = Watched().Run();
    EXPECT_FALSE(result.started);
    EXPECT_THAT(result.error.toStdString(), HasSubstr(program));
  }
}

// Names reach the program as bytes, and passwords so that nobody else can see them.
TEST(RunnerProcess, HandsOnNamesAndPasswords) {
  const Runner runner(R"sh(
for file; do :; done
stat -c '{"mode":"%a"}' "$file"
tr '\0' '\n' <"$file" | od -An -tx1 | tr -d ' \n' | sed 's/.*/{"names":"&"}/'; echo
sed 's/.*/{"password":"&"}/'
echo "{\"arguments\":\"$*\"}")sh");
  RunnerRequest request;
  request.arguments = QStringList{"show", "--json"};
  request.files = QStringList{Here("\xFF\xE4.pdf").section('/', -1), "\n.pdf"};
  request.passwords = QStringList{"secret", QString::fromUtf8("pä")};
  Watched watched;
  const RunnerResult result = watched.Run(request);
  ASSERT_EQ(watched.records.size(), 5) << result.error.toStdString();
  EXPECT_EQ(watched.records[0].json["mode"].toString(), "600");
  EXPECT_EQ(watched.records[1].json["names"].toString(), "ffe42e7064660a0a2e7064660a");
  EXPECT_EQ(watched.records[2].json["password"].toString(), "secret");
  const QString arguments = watched.records[4].json["arguments"].toString();
  EXPECT_THAT(arguments.toStdString(), testing::StartsWith("show --json --password-file - --files-from /"));
  EXPECT_TRUE(QDir(qgetenv("XDG_RUNTIME_DIR")).isEmpty());
}

// A folder for temporary files that cannot be used is passed over; without any, the message says what to do.
TEST(RunnerProcess, FindsAFolderForItsList) {
  const Runner runner("echo '{}'");
  RunnerRequest request;
  request.files = QStringList("/a.pdf");
  const QByteArray temporary = qgetenv("TMPDIR");
  qputenv("XDG_RUNTIME_DIR", "/nowhere");
  EXPECT_EQ(Watched().Run(request).error, QString());
  qputenv("TMPDIR", "/proc");
  EXPECT_EQ(Watched().Run(request).error, QString());
  qputenv("XDG_CACHE_HOME", "/proc/none");
  const RunnerResult result = Watched().Run(request);
  qputenv("TMPDIR", temporary);
  EXPECT_FALSE(result.started);
  EXPECT_THAT(result.error.toStdString(), HasSubstr("Free some space on the disk of one of these folders"));
}

TEST(RunnerProcess, ReadsFloodsInPieces) {
  const Runner runner(R"sh(
yes '{"file":"a","status":"done"}' | head -n 50000
yes x | head -c 9000000 | tr -d '\n'; echo
echo '{"last":true}'
yes 'vorlane-run: noise' | head -n 50000 >&2)sh");
  Watched watched;
  const RunnerResult result = watched.Run();
  ASSERT_EQ(watched.records.size(), 50001);
  EXPECT_TRUE(watched.records.constLast().json["last"].toBool());
  EXPECT_LT(watched.mostAtOnce, 5000);
  EXPECT_EQ(result.messages.size(), RunnerProcess::kMostMessages);
  EXPECT_THAT(result.error.toStdString(), HasSubstr("(1)"));  // the long line
}

TEST(RunnerProcess, EndsAProgramThatHangs) {
  const Runner runner("trap '' TERM; echo '{}'; while :; do sleep 0.05; done");
  RunnerRequest request;
  request.silenceLimit = 200ms;
  Watched silent;
  EXPECT_THAT(silent.Run(request).error.toStdString(), HasSubstr("did not answer"));

  request.silenceLimit = 0ms;
  request.cancelLimit = 200ms;
  Watched cancelled;
  cancelled.process.Start(request);
  ASSERT_TRUE(Await([&] { return !cancelled.records.isEmpty(); }));
  cancelled.process.Cancel();
  const RunnerResult result = cancelled.Finish();
  EXPECT_TRUE(result.cancelled);
  EXPECT_TRUE(result.error.isEmpty());
  EXPECT_EQ(result.exitCode, -1);
}

TEST(RunnerProcess, CanBeCancelledAtOnceAndStartedAgain) {
  const Runner runner("exec sleep 100");
  Watched watched;
  for (int i = 0; i < 3; ++i) {
    watched.result.reset();
    watched.process.Start(RunnerRequest());
    watched.process.Cancel();
    EXPECT_TRUE(watched.Finish().cancelled);
  }
}

TEST(RunnerProcess, LeavesNoProcessBehind) {
  const Runner runner("echo \"{\\\"id\\\":$$}\"; trap '' TERM; while :; do sleep 0.05; done");
  pid_t id = 0;
  {
    Watched watched;
    watched.process.Start(RunnerRequest());
    ASSERT_TRUE(Await([&] { return !watched.records.isEmpty(); }));
    id = watched.records[0].json["id"].toInt();
    ASSERT_EQ(kill(id, 0), 0);
  }
  EXPECT_NE(kill(id, 0), 0);
}
