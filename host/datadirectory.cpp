#include "host/datadirectory.h"

#include "platform/cfgcenter.h"
#include "platform/icfg.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString s_key = QStringLiteral("VexelDataDir");

ICfg& Node()
{
    return *CfgCenter::CreateCfg(QStringLiteral("Administration"), View::Application, QString());
}

} // namespace

namespace DataDirectory {

void Set(const QString& directory)
{
    Node().SetString(s_key, directory, 0);
}

QString InstalledSamples(const QString& programDirectory)
{
    const QString directory =
        QDir::cleanPath(QDir(programDirectory).absoluteFilePath(QStringLiteral(VEXEL_BIN_TO_DATA "/data")));
    return QFileInfo(directory).isDir() ? directory : QString();
}

Fallback::Fallback(const QString& directory)
{
    if (directory.isEmpty() || !Node().GetString(s_key, QString(), 0).isEmpty())
        return;
    Set(directory);
    m_InPlace = true;
}

Fallback::~Fallback()
{
    if (m_InPlace)
        Node().Remove(s_key, 0);
}

} // namespace DataDirectory
