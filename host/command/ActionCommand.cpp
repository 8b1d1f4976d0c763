// SPDX-License-Identifier: Apache-2.0
#include "host/command/ActionCommand.h"

#include <QFileInfo>
#include <QUrl>

#include "host/actions/ActionCatalog.h"
#include "host/base/CommandError.h"
#include "host/base/Suggestion.h"

namespace {

using Setting = SettingsDescription::Setting;

// "Base URL" becomes "base URL", for the middle of a sentence.
QString InSentence(QString title) {
  const bool isAcronym = title.size() > 1 && title[1].isUpper();
  if (!title.isEmpty() && !isAcronym) title[0] = title[0].toLower();
  return title;
}

bool IsFile(const QString& argument) {
  return QFileInfo::exists(argument);
}

bool LooksLikeUrl(const QString& argument) {
  return argument.contains(QLatin1String("://")) && !QUrl(argument).scheme().isEmpty();
}

}  // namespace

ActionCommand::ActionCommand(const QString& name, const QStringList& others)
    : RunCommand(name, QString()), others_(others) {}

void ActionCommand::Parse(const QStringList& arguments) {
  arguments_ = arguments;
  parser_.parse(QStringList{Name()} + arguments);
}

int ActionCommand::Run() {
  FindAction();
  RunCommand::Parse(arguments_);
  return RunCommand::Run();
}

void ActionCommand::FindAction() {
  ActionCatalog catalog(ToolsFolders());
  CActionInterface* const action = catalog.FindCommand(Name());
  if (action == nullptr) {
    throw CommandError(kExitUsage, QStringLiteral("Unknown command '%1'; see 'vorlane-run --help'.%2")
                                       .arg(Name(), Suggestion(Name(), others_ + catalog.CommandNames())));
  }
  description_ = SettingsDescription::Of(action->GetActionName());
  parser_.setApplicationDescription(
      QStringLiteral("Runs the action '%1' over PDF files.").arg(description_->ActionName()));
  if (const Setting* const first = description_->First()) {
    parser_.addPositionalArgument(first->TypeName(), QStringLiteral("%1 (%2)").arg(first->help, first->key));
  }
  AddFileArgument();
  AddExamples();
}

void ActionCommand::AddExamples() {
  const auto isUrl = [](const Setting& setting) { return setting.type == SettingsDescription::Type::kUrl; };
  const QString url = QStringLiteral("https://example.org/manual/");
  const Setting* const first = description_->First();
  if (first == nullptr) {
    AddExample(QStringLiteral("%1 --in-place *.pdf").arg(Name()));
    AddExample(QStringLiteral("%1 -o new.pdf old.pdf").arg(Name()));
    for (const Setting& setting : description_->Settings()) {
      if (isUrl(setting)) AddExample(QStringLiteral("%1 --set %2=%3 -d out *.pdf").arg(Name(), setting.key, url));
    }
    return;
  }
  const QString value = isUrl(*first) ? url : QStringLiteral("VALUE");
  AddExample(QStringLiteral("%1 %2 --in-place *.pdf").arg(Name(), value));
  AddExample(QStringLiteral("%1 %2 -o new.pdf old.pdf").arg(Name(), value));
  AddExample(QStringLiteral("%1 --set-each %2='%3{folder}/' --recursive --in-place site/")
                 .arg(Name(), first->key, isUrl(*first) ? url : QString()));
  if (!first->empty.isEmpty()) {
    AddExample(QStringLiteral("%1 --clear %2 -d out *.pdf   # %3").arg(Name(), first->key, first->empty));
  }
}

QString ActionCommand::HelpText() const {
  return RunCommand::HelpText() + QLatin1Char('\n') + description_->HelpText();
}

// No check: the command's name names the action.
void ActionCommand::CheckAction() const {
  CheckArguments();
}

bool ActionCommand::TakesValue() const {
  const Setting* const first = description_->First();
  if (first == nullptr || IsSet("settings")) return false;
  for (const char* option : {"set", "set-each", "clear"}) {
    for (const QString& text : parser_.values(QLatin1String(option))) {
      if (text.section(QLatin1Char('='), 0, 0) == first->key) return false;
    }
  }
  return true;
}

void ActionCommand::CheckArguments() const {
  CheckKeys(*description_, Given(StoredSettings()));
  const Setting* const first = description_->First();
  const QStringList arguments = parser_.positionalArguments();
  if (first == nullptr) {
    for (const QString& file : arguments) {
      if (!LooksLikeUrl(file) || IsFile(file)) continue;
      throw CommandError(kExitUsage,
                         QStringLiteral("'%1' is a URL where a file is expected; settings are given by --set "
                                        "KEY=VALUE.")
                             .arg(file));
    }
    return;
  }
  const QString what = InSentence(first->title);
  if (TakesValue()) {
    if (arguments.isEmpty()) {
      throw CommandError(kExitUsage, QStringLiteral("No %1 is given: it is the first argument.").arg(what));
    }
    if (IsFile(arguments.constFirst())) {
      throw CommandError(kExitUsage,
                         QStringLiteral("The first argument is the %1, but '%2' is a file. If it is meant, use --set "
                                        "%3=%2.")
                             .arg(what, arguments.constFirst(), first->key));
    }
  }
  for (const QString& file : FileArguments()) {
    if (first->type != SettingsDescription::Type::kUrl || !LooksLikeUrl(file) || IsFile(file)) continue;
    throw CommandError(
        kExitUsage,
        TakesValue()
            ? QStringLiteral("'%1' is a URL where a file is expected: only the first argument is "
                             "the %2.")
                  .arg(file, what)
            : QStringLiteral("'%1' is a URL where a file is expected: the %2 is given by an option.").arg(file, what));
  }
}

QStringList ActionCommand::FileArguments() const {
  return parser_.positionalArguments().mid(TakesValue() ? 1 : 0);
}

std::vector<ConfiguredAction> ActionCommand::LoadActions(ActionCatalog& catalog, QStringList& warnings) const {
  StoredSettings stored = Stored();
  CheckStoredFor(stored, description_->ActionName());
  GivenSettings given = Given(stored);
  if (TakesValue()) given.values.append({description_->First()->key, parser_.positionalArguments().constFirst()});
  return {ConfigureAction(catalog.Get(description_->ActionName()), given, warnings)};
}
