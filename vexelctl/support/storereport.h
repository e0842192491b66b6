// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#pragma once

#include "platform/cfgcenter.h"

#include <QString>

#include <memory>

class ICfg;
class SupportReport;

/// Opens a document as the next start would: its file or, if that is damaged, the newest readable version. Returns the
/// root node, or null if there is none. Needs an open store; changes nothing.
std::unique_ptr<ICfg> OpenNewestReadable(View view, const QString& name);

/// Adds a section on the configuration in `directory`, which must be the open store if it exists: the documents and
/// their state, the stored list, and which host uses it.
void ReportStore(SupportReport& report, const QString& directory);
