// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "host/base/Console.h"
#include "host/base/NativeName.h"
#include "host/files/OutputNames.h"
#include "host/run/FileQuery.h"
#include "host/run/FileRecord.h"
#include "host/run/JobBoard.h"
#include "host/run/RecordFraming.h"
#include "host/run/RunningTime.h"

namespace {

TEST(NativeName, AnyBytesComeBack) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
  EXPECT_EQ(NativeName::ToBytes(NativeName::ToText(all)).toStdString(), all);
  EXPECT_EQ(NativeName::ToText("\xC3\xA4\xF0\x9F\x98\x80"), QString::fromUtf8("\xC3\xA4\xF0\x9F\x98\x80"));
  EXPECT_EQ(NativeName::ToWide("a\xF0\x9F\x98\x80\xFF"), (std::wstring{L'a', wchar_t{0x1F600}, wchar_t{0xDCFF}}));
  EXPECT_EQ(NativeName::ToUnitPerByte("\xC3\xA4"), (std::wstring{wchar_t{0xC3}, wchar_t{0xA4}}));
}

TEST(OutputNames, CopyNumbersDependOnTheOrderOnly) {
  OutputNames names("out");
  const std::pair<const char*, const char*> rows[] = {
      {"a.pdf", "out/a.pdf"},         {"a.pdf", "out/a (1).pdf"}, {"a (1).pdf", "out/a (1) (1).pdf"},
      {"a.pdf", "out/a (2).pdf"},     {"d.e/a", "out/d.e/a"},     {"d.e/a", "out/d.e/a (1)"},
      {".pdf", "out/.pdf"},           {".pdf", "out/.pdf (1)"},   {"A.pdf", "out/A.pdf"},
      {"x (1).pdf", "out/x (1).pdf"}, {"x.pdf", "out/x.pdf"},     {"x.pdf", "out/x (2).pdf"}};
  for (const auto& [relative, output] : rows) EXPECT_EQ(names.Name(relative, names.Take(relative)), output);
}

TEST(FileRecord, EveryValueSurvivesThePipeAndJson) {
  FileRecord record;
  record.file = "q\"\\\n\xFF\xC3\xA4.pdf" + std::string(200000, 'x');
  record.status = FileRecord::Status::kFailed;
  record.reason = "why \xE2\x82\xAC";
  record.baseUrlBefore = {L'x', wchar_t{0x1F600}, wchar_t{0xD800}, wchar_t{7}};
  record.warnings = {"", "two"};
  std::string bytes;
  RecordFraming::Append(bytes, {"", std::string_view("\0b", 2)});
  RecordFraming::Append(bytes, {});
  RecordFraming::Append(bytes, {record.Pack()});
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  RecordFraming::Reader reader;
  RecordFraming::Fields fields;
  std::vector<std::vector<std::string>> records;
  for (std::size_t at = 0; at < bytes.size(); at += 7) {
    ASSERT_TRUE(Console::WriteAll(ends[1], std::string_view(bytes).substr(at, 7)));
    ASSERT_TRUE(reader.Fill(ends[0]));
    while (reader.Next(fields)) records.emplace_back(fields.begin(), fields.end());
  }
  close(ends[1]);
  EXPECT_FALSE(reader.Fill(ends[0]));
  close(ends[0]);
  ASSERT_EQ(records.size(), 3U);
  EXPECT_THAT(records[0], testing::ElementsAre("", std::string("\0b", 2)));
  EXPECT_TRUE(records[1].empty());
  const std::string json = FileRecord::Unpack(records[2][0]).ToJson();
  EXPECT_EQ(json.find('\n'), std::string::npos);
  const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(json)).object();
  EXPECT_EQ(NativeName::ToBytes(object["file"].toString()).toStdString(), record.file);
  EXPECT_EQ(object["baseUrlBefore"].toString().size(), 5);
  EXPECT_EQ(object["warnings"].toArray(), QJsonArray({"", "two"}));
}

// If a reader left bytes in the pipe, the worker would wait.
TEST(RecordFraming, OneReadTakesWhatAPipeHolds) {
  std::string bytes;
  for (int i = 0; i < 100; ++i) RecordFraming::Append(bytes, {std::string(500, 'x')});
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_TRUE(Console::WriteAll(ends[1], bytes));
  RecordFraming::Reader reader;
  RecordFraming::Fields fields;
  ASSERT_TRUE(reader.Fill(ends[0]));
  int records = 0;
  while (reader.Next(fields)) ++records;
  EXPECT_EQ(records, 100);
  close(ends[0]);
  close(ends[1]);
}

// What the query prints into a pipe when the second file, then the third, then the first is read.
QByteArrayList AnswersIntoAPipe(bool prompt) {
  InputList inputs(false, nullptr);
  for (const char* name : {"a", "b", "c"}) inputs.Add(name);
  int ends[2];
  EXPECT_EQ(pipe2(ends, O_NONBLOCK), 0);
  const int output = dup(STDOUT_FILENO);
  dup2(ends[1], STDOUT_FILENO);
  FileQuestion question;
  question.prompt = prompt;
  FileQuery::Clock::time_point now;
  FileQuery query(inputs, question, [&now] { return now; });
  QByteArrayList printed;
  const auto printedBy = [&](auto step) {
    step();
    char text[64];
    printed += QByteArray(text, static_cast<int>(std::max<ssize_t>(read(ends[0], text, sizeof text), 0)));
  };
  for (const std::size_t item : {1U, 2U, 0U}) {
    std::string answer;
    RecordFraming::Append(answer, {"", "", std::to_string(item)});
    query.Take(item, answer);
    printedBy([&] { query.Flush(); });
    if (item != 1) continue;
    now += FileQuery::kLongestWait;
    printedBy([&] { query.Flush(); });
  }
  printedBy([&] { query.Finish(); });
  dup2(output, STDOUT_FILENO);
  for (const int descriptor : {output, ends[0], ends[1]}) close(descriptor);
  return printed;
}

TEST(FileQuery, PromptAnswersDoNotWaitForASlowFile) {
  EXPECT_EQ(AnswersIntoAPipe(true), (QByteArrayList{"", "1", "2", "0", ""}));
  EXPECT_EQ(AnswersIntoAPipe(false), (QByteArrayList{"", "", "", "012", ""}));
}

TEST(JobBoard, NoItemIsLostOrDoneTwice) {
  JobBoard board(3);
  EXPECT_EQ(board.Claim(11), 0U);
  EXPECT_EQ(board.Claim(12), 1U);
  EXPECT_TRUE(board.Settle(0));
  EXPECT_FALSE(board.Settle(0));
  EXPECT_EQ(board.Claim(11), 2U);
  EXPECT_THAT(board.HeldBy(11), testing::ElementsAre(2U));
  // The claim of the last item was not completed: only that item is found again.
  JobBoard cut(2);
  EXPECT_EQ(cut.Claim(11), 0U);
  cut.Rewind();
  EXPECT_EQ(cut.Claim(12), 1U);
  cut.Stop();
  EXPECT_EQ(cut.Claim(12), std::nullopt);
}

TEST(RunningTime, CountsNoTimeInWhichTheProcessStoodStill) {
  using std::chrono::milliseconds;
  const RunningTime::Clock::time_point start{};
  RunningTime time(start);
  const std::pair<int, int> rows[] = {{50, 0},       {100, 100},  {140, 0},      {210, 110},
                                      {100210, 100}, {100211, 0}, {100310, 100}, {100509, 199}};
  for (const auto& [now, passed] : rows) {
    EXPECT_EQ(time.Advance(start + milliseconds(now)), milliseconds(passed)) << now;
  }
}

}  // namespace
