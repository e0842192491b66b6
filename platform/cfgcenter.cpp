#include "platform/cfgcenter.h"

#include "platform/configdocument.h"
#include "platform/confignames.h"
#include "platform/confignode.h"
#include "platform/tracing.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <map>
#include <memory>
#include <utility>

namespace {

/// What `CfgCenter` holds for the process.
struct Store
{
    QString directory;                                            // empty: documents live in memory alone
    std::map<QString, std::shared_ptr<ConfigDocument>> documents; // by file, relative to the store
    std::map<std::pair<QString, QString>, std::unique_ptr<ConfigNode>> rootNodes; // by that file and the key path
};

Store& TheStore()
{
    static Store store;
    return store;
}

std::function<void(const QString&)>& TheNoticeSink()
{
    static std::function<void(const QString&)> sink;
    return sink;
}

ICfg* RootNode(const QString& file, const QString& path)
{
    Store& store = TheStore();
    auto& document = store.documents[file];
    QString notice;
    if (!document) {
        document =
            std::make_shared<ConfigDocument>(store.directory.isEmpty() ? QString() : store.directory + u'/' + file);
        notice = document->Notice();
    }
    auto& node = store.rootNodes[{file, path}];
    if (!node)
        node = std::make_unique<ConfigNode>(document, path);
    ICfg* const result = node.get();
    // Last, as the sink may come back here.
    if (!notice.isEmpty() && TheNoticeSink())
        TheNoticeSink()(notice);
    return result;
}

bool CanHoldFiles(const QString& directory)
{
    // Permission bits do not tell: a file system can be read-only, and an administrator passes them all.
    QTemporaryFile probe(directory + QStringLiteral("/.probe-XXXXXX"));
    return probe.open();
}

} // namespace

ICfg* CfgCenter::GetAppCfg(View view)
{
    return RootNode(ConfigNames::ApplicationFile(view), {});
}

ICfg* CfgCenter::CreateCfg(const QString& name, View view, const QString& sub)
{
    return RootNode(ConfigNames::DocumentFile(view, name), sub.isEmpty() ? QString() : ConfigNames::ToStep(sub));
}

bool CfgCenter::SaveDocument()
{
    bool isSaved = true;
    for (const auto& [file, document] : TheStore().documents)
        isSaved = document->Save() && isSaved;
    return isSaved;
}

bool CfgCenter::Open(const QString& directory)
{
    Close();

    const QString path = directory.isEmpty() ? QString() : QDir(directory).absolutePath();
    if (path.isEmpty() || !QDir().mkpath(path) || !CanHoldFiles(path)) {
        TraceWhenWanted("platform/cfgcenter", __LINE__, [&] {
            return QStringLiteral("CfgCenter::Open(): Could not use %1 as configuration directory").arg(directory);
        });
        return false;
    }
    TheStore().directory = path;
    return true;
}

bool CfgCenter::OpenToLook(const QString& directory)
{
    Close();

    if (!QFileInfo(directory).isDir())
        return false;
    TheStore().directory = QDir(directory).absolutePath();
    return true;
}

void CfgCenter::Close()
{
    TheStore() = Store();
}

QString CfgCenter::Directory()
{
    return TheStore().directory;
}

void CfgCenter::SetNoticeSink(std::function<void(const QString&)> sink)
{
    TheNoticeSink() = std::move(sink);
}
