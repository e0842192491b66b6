// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/store/configsaver.h"

#include "host/output/console.h"
#include "platform/cfgcenter.h"

#include <utility>

QString ConfigSaver::Save()
{
    return Report(CfgCenter::SaveDocument());
}

void ConfigSaver::SaveAsync(std::function<void(const QString& error)> done)
{
    CfgCenter::SaveDocumentAsync([this, done = std::move(done)](bool isSaved) { done(Report(isSaved)); });
}

QString ConfigSaver::Report(bool isSaved)
{
    const QString error = isSaved ? QString() : CfgCenter::SaveError();
    if (!isSaved && !m_hasFailed)
        Console::PrintError(QStringLiteral("the configuration could not be saved: %1").arg(error));
    m_hasFailed = !isSaved;
    return error;
}
