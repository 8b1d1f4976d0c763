// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/FileTableModel.h"

FileTableModel::FileTableModel(QObject* parent) : QAbstractTableModel(parent) {}
int FileTableModel::Add(const QVector<FoundFile>&) {
  return 0;
}
int FileTableModel::Add(const QStringList&) {
  return 0;
}
void FileTableModel::Remove(QVector<int>) {}
void FileTableModel::Clear() {}
int FileTableModel::RowOf(const QString& path) const {
  return rowOfPath_.value(path, -1);
}
QStringList FileTableModel::Paths() const {
  return {};
}
QStringList FileTableModel::PathsWith(FileState) const {
  return {};
}
void FileTableModel::SetFacts(const QVector<QPair<QString, FileFacts>>&) {}
void FileTableModel::SetStates(const QVector<FileStateChange>&) {}
void FileTableModel::SetState(const QString&, FileState, const QString&) {}
QString FileTableModel::StateName(FileState) {
  return {};
}
int FileTableModel::rowCount(const QModelIndex&) const {
  return 0;
}
int FileTableModel::columnCount(const QModelIndex&) const {
  return kColumnCount;
}
QVariant FileTableModel::data(const QModelIndex&, int) const {
  return {};
}
QVariant FileTableModel::headerData(int, Qt::Orientation, int) const {
  return {};
}
