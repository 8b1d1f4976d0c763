// SPDX-License-Identifier: Apache-2.0
// AbiFacts PLUGIN: prints what Qt knows of the contract with hosts, as JSON. Its debug information holds the rest.
#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPluginLoader>
#include <QTextStream>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/CActionInterface.h"
#include "plugin/CSetBaseURL.h"
#include "plugin/DialogLoadStruct.h"
#include "plugin/WorkProcInfoStruct.h"

// Named by an exported function, so that each type is described whole.
struct HostContract {
  CActionInterface* interface;
  CSetBaseURL* action;
  WorkProcInfoStruct run;
  DialogLoadStruct dialog;
  HalvexPDFLibraryCPDylibCPP1311* document;
  LibraryFunctionSlot slot;
};

extern "C" __attribute__((visibility("default"))) const void* DescribeHostContract(const HostContract* contract) {
  return contract;
}

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QPluginLoader plugin(QString::fromLocal8Bit(argv[argc - 1]));
  const QJsonObject facts{{QStringLiteral("interface"), QLatin1String(qobject_interface_iid<CActionInterface*>())},
                          {QStringLiteral("plugin"), plugin.metaData()}};
  QTextStream(stdout) << QJsonDocument(facts).toJson();
  return 0;
}
