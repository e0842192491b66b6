#pragma once

#include "platform/cfgcenter.h"

#include <QString>

#include <memory>

class ICfg;
class SupportReport;

/// The root node of a document as the next start would find it: of its file or, where that is damaged, of the newest
/// version that can be read. Null where there is none. Needs an open store; nothing is changed.
std::unique_ptr<ICfg> OpenAsAtStart(View view, const QString& name);

/// Adds a section on the configuration in `directory`, which is the open store where it exists: the documents and their
/// state, the stored list of entries, and who works there.
void ReportStore(SupportReport& report, const QString& directory);
