// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <initializer_list>
#include <QCommandLineParser>
#include <QMap>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

// One command of the program: its options, its help and its work.
class Command {
 public:
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  QString Name() const { return name_; }
  QString Summary() const { return summary_; }

  // Qt's own help option would also name options of Qt, which the commands do not take.
  static QCommandLineOption HelpOption();

  // Takes the arguments after the command's name. Throws CommandError(kExitUsage).
  virtual void Parse(const QStringList& arguments);
  // Whether a QApplication must exist before Run; a QCoreApplication always does. Asked after Parse.
  virtual bool NeedsWindowSystem() const { return false; }
  // Prepares the environment of that QApplication.
  virtual void PrepareWindowSystem() const;
  bool OnlyHelps() const { return IsSet("help"); }
  // Does the work, or prints the help when it was asked for; returns the exit code. Throws CommandError.
  virtual int Run();
  virtual QString HelpText() const;

 protected:
  Command(const QString& name, const QString& summary);

  // Checks what the parser alone cannot: options that exclude or need each other, numbers in their range.
  virtual void Check() {}
  virtual int Execute() = 0;

  // `name` may have a short form before it: "o|output".
  void AddOption(const QString& name, const QString& description, const QString& value = QString());
  // False also for an option that the command does not have.
  bool IsSet(const char* name) const {
    return options_.contains(QLatin1String(name)) && parser_.isSet(QLatin1String(name));
  }
  QString Value(const char* name) const { return parser_.value(QLatin1String(name)); }
  QByteArray BytesOf(const char* name) const;
  // The option's whole number, `fallback` when it is not set. Throws CommandError when it is not a number or out of
  // range.
  int Number(const char* name, int fallback, int least, int most) const;
  // Throws CommandError when both options are set.
  void Exclude(const char* one, const char* other) const;
  // Throws CommandError when one of the options is given an empty name.
  void RefuseEmpty(std::initializer_list<const char*> names) const;
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
  // All that are to be tried. Throws CommandError when the password file cannot be read, or an input is in its place.
  std::vector<std::wstring> Passwords() const;
  // Throws CommandError when more than one of the options reads the standard input.
  void CheckStandardInput(const std::vector<const char*>& options) const;
  // One example for the end of the help.
  void AddExample(const QString& line) { examples_ += line; }

  QCommandLineParser parser_;

 private:
  void RefuseRepeatedOptions() const;

  QString LongName(const QString& name) const;
  void RefuseDashedNames(const QStringList& arguments) const;
  QString ParsingError() const;

  QString name_;
  QString summary_;
  QStringList options_;
  QStringList valued_;                 // options with a value
  QMap<QString, QString> shortForms_;  // to long ones
  QStringList repeatable_;
  QStringList examples_;
};
