// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>
#include <QString>

#include <vector>

class ConnectionsModel;

/// The lists for all benchmarks: the same in every run.
namespace Lists {

/// Generates `count` typical entries: unsorted names, all types, every tenth ticked.
std::vector<Connection> Entries(int count);

/// The exported document of `entries`.
QByteArray Document(const std::vector<Connection>& entries);

/// Appends `entries` to `model`.
void Fill(ConnectionsModel& model, const std::vector<Connection>& entries);

/// Stores `entries` in the configuration directory `store`, which is created.
void Store(const std::vector<Connection>& entries, const QString& store);

/// The size of all texts of `entries`, in bytes: two per UTF-16 code unit.
qint64 TextBytes(const std::vector<Connection>& entries);

} // namespace Lists
