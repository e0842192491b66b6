#pragma once

#include "userinterface/vexelconnectdlg/connection.h"

#include <QByteArray>

#include <vector>

class ConnectionsModel;

/// The lists that all measurements work on: the same at every run.
namespace Lists {

/// `count` entries as they come together in years of use: names in no order, all types, one tick in ten.
std::vector<Connection> Entries(int count);

/// Their document, as it is exported.
QByteArray Document(const std::vector<Connection>& entries);

/// Appends `entries` to `model`.
void Fill(ConnectionsModel& model, const std::vector<Connection>& entries);

/// What the texts of `entries` hold, in bytes: two for each UTF-16 code unit.
qint64 TextBytes(const std::vector<Connection>& entries);

} // namespace Lists
