// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include <QString>

class QDateTime;

/// Formats a time for people: "2026-03-04 10:11:12", or "-" if it is invalid.
QString TimeText(const QDateTime& time);
