// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "host/plugin/entryapplication.h"
#include "userinterface/vexelconnectdlg/connection.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <optional>

/// Entries as JSON for programs. It does not depend on the language: each enumerated value has its number, and its
/// English text under another key.

/// Returns a time as text: ISO 8601 with milliseconds and the offset from UTC ("2026-03-04T10:11:12.013+01:00").
QString TimeToJson(const QDateTime& time);

/// Inserts "program", "process" and "since" into `object` and, once the application has ended, "exitCode", or "crashed"
/// and, if known, "signal".
void InsertApplication(QJsonObject& object, const EntryApplication& application);

/// Returns the fields of an entry and of the application that serves it, if any.
QJsonObject EntryToJson(const Connection& entry, const std::optional<EntryApplication>& application = {});

/// Read what the functions above have written. A missing field is empty or 0; without "process" there is no
/// application.
Connection EntryFromJson(const QJsonObject& object);
std::optional<EntryApplication> ApplicationFromJson(const QJsonObject& object);
