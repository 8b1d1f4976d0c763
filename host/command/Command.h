// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <string>

// One command of the program: its options, its help and its work.
class Command {
 public:
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  QString Name() const { return name_; }
  QString Summary() const { return summary_; }

  // Not Qt's own, which promises options of Qt that the commands do not take.
  static QCommandLineOption HelpOption();

  // Takes the arguments after the command's name. Throws CommandError(kExitUsage).
  void Parse(const QStringList& arguments);
  // Whether a QApplication must exist before Run; a QCoreApplication always does. Asked after Parse.
  virtual bool NeedsWindowSystem() const { return false; }
  // Prepares the environment of that QApplication.
  virtual void PrepareWindowSystem() const;
  bool OnlyHelps() const { return IsSet("help"); }
  // Does the work, or prints the help when it was asked for; returns the exit code. Throws CommandError.
  int Run();

 protected:
  Command(const QString& name, const QString& summary);

  // Checks what the parser alone cannot: options that exclude or need each other, numbers in their range.
  virtual void Check() {}
  virtual int Execute() = 0;

  void AddOption(const QString& name, const QString& description, const QString& value = QString());
  bool IsSet(const char* name) const { return parser_.isSet(QLatin1String(name)); }
  QString Value(const char* name) const { return parser_.value(QLatin1String(name)); }
  QByteArray BytesOf(const char* name) const;
  // The option's whole number, `fallback` when it is not set. Throws CommandError when it is not a number or out of
  // range.
  int Number(const char* name, int fallback, int least, int most) const;
  // Throws CommandError when both options are set.
  void Exclude(const char* one, const char* other) const;
  // Throws CommandError when there is an argument that is not an option.
  void RefuseArguments() const;
  // Marks an option that may be given more than once.
  void AllowRepeated(const char* name) { repeatable_ += QLatin1String(name); }

  // Options that several commands share.
  void AddToolsOption();
  // Throws CommandError when the given folder does not exist.
  QStringList ToolsFolders() const;
  void AddLibraryOption();
  // As the wrapper wants it.
  std::wstring LibraryFile() const;
  void AddPasswordOptions();
  void CheckPasswordOptions() const { Exclude("password", "password-file"); }
  // Throws CommandError when the password file cannot be read.
  std::wstring Password() const;
  void AddActionOptions();
  // The --set options as a settings map. Throws CommandError for one without "=".
  QMap<QString, QVariant> Settings() const;

  QCommandLineParser parser_;

 private:
  void RefuseRepeatedOptions() const;

  QString name_;
  QString summary_;
  QStringList repeatable_;
};
