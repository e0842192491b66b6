// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"

#include "files/atomicfile.h"
#include "platform/config/configdocument.h"
#include "platform/config/confignames.h"
#include "platform/config/confignode.h"
#include "platform/config/readahead.h"
#include "platform/tracing.h"
#include "process/background.h"
#include "process/freememory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <future>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace {

using Documents = std::vector<std::shared_ptr<ConfigDocument>>;
using SaveRequests = std::vector<ConfigDocument::SaveRequest>;
using SaveResults = std::vector<ConfigDocument::SaveResult>;

using SaveDone = std::vector<std::function<void(bool isSaved)>>;

/// A save that runs in another thread.
struct BackgroundSave
{
    quint64 number = 0;
    Documents documents;
    std::future<SaveResults> results;
    SaveDone done;
};

/// What `CfgCenter` holds for the process.
struct Store
{
    QString directory; // empty: documents live in memory alone
    DocumentAccess access = DocumentAccess::ReadWrite;
    std::map<QString, std::shared_ptr<ConfigDocument>> documents;                 // by file, relative to the store
    std::map<std::pair<QString, QString>, std::unique_ptr<ConfigNode>> rootNodes; // by that file and the key path
    std::optional<BackgroundSave> backgroundSave;
    SaveDone waitingForASave; // to be started when the one in the background has ended
    QString saveError;
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

VersionFilter& TheVersionFilter()
{
    static VersionFilter filter;
    return filter;
}

void Tell(const QString& notice)
{
    if (!notice.isEmpty() && TheNoticeSink())
        TheNoticeSink()(notice);
}

SaveRequests BeginSave(Documents& documents)
{
    SaveRequests requests;
    QStringList notices; // of checks that have ended here
    for (const auto& [file, document] : TheStore().documents) {
        if (auto request = document->BeginSave(TheVersionFilter())) {
            documents.push_back(document);
            requests.push_back(std::move(*request));
        }
        notices += document->TakeNotice();
    }
    // Last, because the receiver may open documents.
    for (const QString& notice : std::as_const(notices))
        Tell(notice);
    return requests;
}

SaveResults RunSave(const SaveRequests& requests)
{
    SaveResults results;
    for (const ConfigDocument::SaveRequest& request : requests)
        results.push_back(ConfigDocument::RunSave(request));
    return results;
}

bool FinishSave(const Documents& documents, const SaveResults& results)
{
    QStringList errors;
    QStringList notices;
    for (std::size_t i = 0; i < documents.size(); ++i) {
        documents[i]->FinishSave(results[i]);
        if (!results[i].error.isEmpty())
            errors += results[i].error;
        notices += documents[i]->TakeNotice();
    }
    TheStore().saveError = errors.join(QStringLiteral("; "));
    if (!documents.empty())
        ReturnFreeMemory();
    for (const QString& notice : std::as_const(notices)) // last, as the sink may open documents
        Tell(notice);
    return errors.isEmpty();
}

void Call(const SaveDone& done, bool isSaved)
{
    for (const auto& function : done)
        function(isSaved);
}

/// Waits for the save that runs in another thread, if there is one.
void FinishBackgroundSave()
{
    if (std::optional<BackgroundSave> save = std::exchange(TheStore().backgroundSave, std::nullopt))
        Call(save->done, FinishSave(save->documents, save->results.get()));
}

void StartBackgroundSave(SaveDone done)
{
    static quint64 number = 0;
    const auto finish = [number = ++number] {
        if (!TheStore().backgroundSave || TheStore().backgroundSave->number != number)
            return;
        FinishBackgroundSave();
        if (!TheStore().backgroundSave && !TheStore().waitingForASave.empty())
            StartBackgroundSave(std::exchange(TheStore().waitingForASave, {}));
    };
    Documents documents;
    auto work = [requests = BeginSave(documents), finish] {
        SaveResults results = RunSave(requests);
        QMetaObject::invokeMethod(QCoreApplication::instance(), finish, Qt::QueuedConnection);
        return results;
    };
    TheStore().backgroundSave = {number, std::move(documents), RunInBackground(std::move(work)), std::move(done)};
}

QString FileIn(const QString& directory, const QString& file)
{
    return directory + u'/' + file;
}

ICfg* RootNode(const QString& file, const QString& path)
{
    Store& store = TheStore();
    auto& document = store.documents[file];
    QString notice;
    if (!document) {
        document = std::make_shared<ConfigDocument>(
            store.directory.isEmpty() ? QString() : FileIn(store.directory, file), store.access);
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
    if (QFileInfo(directory).isSymbolicLink() && !QFileInfo::exists(directory))
        return QStringLiteral("it is a link that leads nowhere");
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
    FinishBackgroundSave();
    const SaveDone done = std::exchange(TheStore().waitingForASave, {});
    Documents documents;
    const SaveRequests requests = BeginSave(documents);
    const bool isSaved = FinishSave(documents, RunSave(requests));
    Call(done, isSaved);
    return isSaved;
}

void CfgCenter::SaveDocumentAsync(std::function<void(bool isSaved)> done)
{
    if (TheStore().backgroundSave)
        TheStore().waitingForASave.push_back(std::move(done));
    else
        StartBackgroundSave({std::move(done)});
}

QString CfgCenter::SaveError()
{
    return TheStore().saveError;
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

void CfgCenter::ReadAhead(const QString& directory)
{
    if (!directory.isEmpty())
        ::ReadAhead::Begin(FileIn(QDir(directory).absolutePath(), ConfigNames::ApplicationFile(View::Application)));
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
    FinishBackgroundSave();
    if (!TheStore().waitingForASave.empty())
        SaveDocument();
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

bool CfgCenter::WasAppCfgIntact(View view)
{
    GetAppCfg(view);
    const std::shared_ptr<ConfigDocument> document = TheStore().documents.at(ConfigNames::ApplicationFile(view));
    const bool wasIntact = document->WasIntact();
    Tell(document->TakeNotice());
    return wasIntact;
}

bool CfgCenter::IsAppCfgLost(View view)
{
    GetAppCfg(view);
    return TheStore().documents.at(ConfigNames::ApplicationFile(view))->IsLost();
}

void CfgCenter::SetNoticeSink(std::function<void(const QString&)> sink)
{
    TheNoticeSink() = std::move(sink);
}

void CfgCenter::SetVersionFilter(std::function<bool(const ConfigValues& before, const ConfigValues& after)> filter)
{
    TheVersionFilter() = std::move(filter);
}
