// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <QDir>
#include <QFile>
#include <string>

#include "tests/support/ProgramRun.h"

namespace {

// Whether a set of signals in /proc/ID/status has this one.
bool HasSignal(pid_t id, const char* set, int signal) {
  const std::string status = ReadText(QString("/proc/%1/status").arg(id));
  const std::size_t at = status.find(set);
  return at != std::string::npos &&
         (std::stoull(status.substr(at + std::strlen(set)), nullptr, 16) >> (signal - 1)) % 2 == 1;
}

// Sends the signal once the program catches it, and returns when the program has got it: two that are pending at once
// would count as one.
void Interrupt(QProcess& process, int signal) {
  const auto id = static_cast<pid_t>(process.processId());
  ASSERT_GT(id, 0) << "ended before it was interrupted";  // and 0 would signal every process of the tests
  for (int i = 0; i < 40000 && !HasSignal(id, "SigCgt:", signal); ++i) usleep(5000);
  kill(id, signal);
  for (int i = 0; i < 40000 && HasSignal(id, "ShdPnd:", signal); ++i) usleep(5000);
}

class Interrupted : public testing::TestWithParam<std::pair<int, int>> {};

TEST_P(Interrupted, TheReportIsTrueAndResumeGoesOn) {
  const auto [jobs, signal] = GetParam();
  QStringList files;
  for (int i = 0; i < 15; ++i) files += QString(i == 3 || i == 4 ? "gate%1.pdf" : "slow%1.pdf").arg(i);
  for (const QString& file : files) WriteFile(file, MakePdf());
  const QStringList run = ProbeRun({"--jobs", QString::number(jobs), "--output-dir", "out", "--report", "r.jsonl"});
  const auto process = StartProgram(run + files);
  WaitForLines("r.jsonl", 3);
  Interrupt(*process, signal);
  WriteFile("open", "");
  const ProgramResult result = FinishProgram(*process);
  EXPECT_EQ(result.code, 128 + signal);
  EXPECT_THAT(result.err.toStdString(), testing::HasSubstr("left: interrupted"));
  // Workers may hold no file at that moment.
  EXPECT_TRUE(jobs > 0 || !result.err.contains("stopping, finishing ")) << result.err.toStdString();
  const auto report = ReadReport(ReadFile("r.jsonl"));
  EXPECT_LT(report.size(), files.size());
  for (const QJsonObject& record : report) EXPECT_EQ(record["status"].toString(), "done");
  EXPECT_EQ(QDir("out").entryList(QDir::Files | QDir::Hidden).size(), report.size());

  EXPECT_EQ(RunProgram(run + QStringList{"--resume", "r.jsonl"} + files).code, 0);
  EXPECT_EQ(ReadFile("r.jsonl").count('\n'), files.size());
}

INSTANTIATE_TEST_SUITE_P(States, Interrupted,
                         testing::Values(std::make_pair(1, SIGINT), std::make_pair(2, SIGTERM),
                                         std::make_pair(0, SIGINT)),
                         [](const auto& state) {
                           return (state.param.second == SIGINT ? "SIGINT" : "SIGTERM") +
                                  std::to_string(state.param.first);
                         });

TEST(InterruptedTwice, NothingIsWaitedFor) {
  const std::pair<QStringList, const char*> rows[] = {
      {{"--jobs", "1"}, "interrupted"}, {{"--jobs", "0"}, ""}, {{"--set", "hang=1"}, ""}};  // before all documents
  for (const auto& [arguments, reason] : rows) {
    QFile::remove("log");
    WriteFile("hang.pdf", MakePdf());
    const auto process =
        StartProgram(ProbeRun({"--set", "log=log", "--in-place", "--report", "-", "hang.pdf"}) + arguments);
    WaitForLines("log", arguments.contains("hang=1") ? 1 : 2);
    Interrupt(*process, SIGTERM);
    EXPECT_FALSE(process->waitForFinished(300));
    Interrupt(*process, SIGTERM);
    const ProgramResult result = FinishProgram(*process);
    EXPECT_EQ(result.code, 128 + SIGTERM);
    EXPECT_EQ(ReadReport(result.out)["hang.pdf"]["reason"].toString(), reason);
    EXPECT_EQ(ReadFile("hang.pdf"), MakePdf());
  }
}

TEST(Waiting, OneSignalEndsIt) {
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  QStringList files;
  for (int i = 0; i < 600; ++i) files += QString("f%1.pdf").arg(i);
  for (const QString& file : files) WriteFile(file, MakePdf());
  const QStringList rows[] = {{"--files-from", "-"},
                              {"--files-from", "pipe"},
                              {"--password-file", "pipe", "f0.pdf"},
                              {"--report", "pipe", "f0.pdf"},
                              {"--report", "pipe", "--jobs", "1"},
                              {"--report", "pipe", "--jobs", "0"}};
  for (const QStringList& row : rows) {
    const bool isRead = row.contains("--jobs");  // but nothing is taken out of the pipe
    const int reader = isRead ? open("pipe", O_RDONLY | O_NONBLOCK | O_CLOEXEC) : -1;
    const auto process = StartProgram(ProbeRun({"--output-dir", "out"}) + row + (isRead ? files : QStringList()));
    EXPECT_FALSE(process->waitForFinished(isRead ? 1000 : 200)) << row.join(' ').toStdString();
    Interrupt(*process, SIGTERM);
    // Its standard input stays open meanwhile.
    EXPECT_TRUE(process->waitForFinished(60000)) << row.join(' ').toStdString();
    EXPECT_EQ(process->exitCode(), 128 + SIGTERM) << row.join(' ').toStdString();
    if (reader >= 0) close(reader);
  }
}

TEST(Stopped, TimeInWhichNothingRunsCostsNoFile) {
  WriteFile("gate.pdf", MakePdf());
  for (const bool workerAlone : {false, true}) {
    for (const char* name : {"log", "open"}) QFile::remove(name);
    const auto process = StartProgram(ProbeRun(
        {"--set", "log=log", "--output-dir", "out", "--report", "-", "--jobs", "1", "--timeout", "4", "gate.pdf"}));
    WaitForLines("log", 2);
    const auto id = static_cast<pid_t>(process->processId());
    const QString children = QString("/proc/%1/task/%1/children").arg(id);
    const pid_t stopped = workerAlone ? ReadFile(children).trimmed().toInt() : -id;
    ASSERT_NE(stopped, 0) << "this would stop every process of the tests";
    ASSERT_EQ(kill(stopped, SIGSTOP), 0);
    sleep(5);
    ASSERT_EQ(kill(stopped, SIGCONT), 0);
    WriteFile("open", "");
    const ProgramResult result = FinishProgram(*process);
    EXPECT_EQ(result.code, 0) << result.err.toStdString();
    EXPECT_EQ(QDir("out").entryList(QDir::Files | QDir::Hidden), QStringList("gate.pdf"));
  }
}

}  // namespace
