#include "platform/cfgcenter.h"

#include "files/atomicfile.h"
#include "platform/config/configdocument.h"
#include "platform/config/confignames.h"
#include "platform/config/confignode.h"
#include "platform/tracing.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <map>
#include <memory>
#include <utility>

namespace {

/// What `CfgCenter` holds for the process.
struct Store
{
    QString directory; // empty: documents live in memory alone
    DocumentAccess access = DocumentAccess::ReadWrite;
    std::map<QString, std::shared_ptr<ConfigDocument>> documents;                 // by file, relative to the store
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

void Tell(const QString& notice)
{
    if (!notice.isEmpty() && TheNoticeSink())
        TheNoticeSink()(notice);
}

ICfg* RootNode(const QString& file, const QString& path)
{
    Store& store = TheStore();
    auto& document = store.documents[file];
    QString notice;
    if (!document) {
        document = std::make_shared<ConfigDocument>(
            store.directory.isEmpty() ? QString() : store.directory + u'/' + file, store.access);
        notice = document->TakeNotice();
    }
    auto& node = store.rootNodes[{file, path}];
    if (!node)
        node = std::make_unique<ConfigNode>(document, path);
    ICfg* const result = node.get();
    Tell(notice); // last, as the sink may come back here
    return result;
}

QString& TheOpenError()
{
    static QString error;
    return error;
}

QString ObstacleTo(const QString& directory)
{
    if (directory.isEmpty())
        return QStringLiteral("its name is empty");
    // A full disk is no obstacle: the documents can be read, and there may be room later.
    if (CreateFolder(directory))
        return CreationObstacle(directory);
    return QFileInfo::exists(directory) ? QStringLiteral("it is not a directory")
                                        : QStringLiteral("it cannot be created");
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
    QStringList notices;
    for (const auto& [file, document] : TheStore().documents) {
        isSaved = document->Save() && isSaved;
        notices += document->TakeNotice();
    }
    for (const QString& notice : std::as_const(notices)) // last, as the sink may open documents
        Tell(notice);
    return isSaved;
}

bool CfgCenter::Open(const QString& directory)
{
    Close();

    const QString path = directory.isEmpty() ? QString() : QDir(directory).absolutePath();
    TheOpenError() = ObstacleTo(path);
    if (!TheOpenError().isEmpty()) {
        Trace("platform/cfgcenter", __LINE__, [&] {
            return QStringLiteral("CfgCenter::Open(): Could not use %1 as configuration directory: %2")
                .arg(directory, TheOpenError());
        });
        return false;
    }
    TheStore().directory = path;
    return true;
}

QString CfgCenter::OpenError()
{
    return TheOpenError();
}

bool CfgCenter::OpenReadOnly(const QString& directory)
{
    Close();

    if (!QFileInfo(directory).isDir())
        return false;
    TheStore().directory = QDir(directory).absolutePath();
    TheStore().access = DocumentAccess::ReadOnly;
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

bool CfgCenter::IsAppCfgKnown(View view)
{
    GetAppCfg(view);
    return TheStore().documents.at(ConfigNames::ApplicationFile(view))->IsKnown();
}

void CfgCenter::SetNoticeSink(std::function<void(const QString&)> sink)
{
    TheNoticeSink() = std::move(sink);
}
