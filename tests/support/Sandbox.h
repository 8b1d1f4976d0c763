// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <QTemporaryDir>

// Gives every test a home, XDG, temporary and working folder of its own, so that no test touches the user's files.
class Sandbox : public testing::EmptyTestEventListener {
 public:
  // Registers the listener and applies a first sandbox, for what runs before the first test.
  static void Install();
  // The running test's own folder, with "home" and "tmp" in it.
  static QString Folder();

 private:
  void OnTestStart(const testing::TestInfo&) override;
  void OnTestEnd(const testing::TestInfo&) override;
  void Enter();

  std::unique_ptr<QTemporaryDir> folder_;
};
