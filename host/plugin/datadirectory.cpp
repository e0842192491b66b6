// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/plugin/datadirectory.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kKey = QStringLiteral("VexelDataDir");
const QString kNoticeKey = QStringLiteral("SamplesNoticeShown");

ICfg& AdministrationNode()
{
    return *CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString());
}

} // namespace

namespace DataDirectory {

void Set(const QString& directory)
{
    AdministrationNode().SetString(kKey, directory, 0);
}

bool IsSamplesNoticeShown()
{
    return AdministrationNode().GetInt(kNoticeKey, 0, 0) != 0;
}

void SetSamplesNoticeShown()
{
    AdministrationNode().SetInt(kNoticeKey, 1, 0);
}

QString InstalledSamples(const QString& programDirectory)
{
    const QString directory =
        QDir::cleanPath(QDir(programDirectory).absoluteFilePath(QStringLiteral(VEXEL_BIN_TO_DATA "/data")));
    return QFileInfo(directory).isDir() ? directory : QString();
}

Fallback::Fallback(const QString& directory)
{
    if (directory.isEmpty() || !AdministrationNode().GetString(kKey, QString(), 0).isEmpty())
        return;
    Set(directory);
    m_isSet = true;
}

Fallback::~Fallback()
{
    if (m_isSet)
        AdministrationNode().Remove(kKey, 0);
}

} // namespace DataDirectory
