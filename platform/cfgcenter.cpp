// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/cfgcenter.h"

#include "files/atomicfile.h"
#include "platform/config/configdocument.h"
#include "platform/config/confignames.h"
#include "platform/config/confignode.h"
#include "platform/config/readahead.h"
#include "platform/documentwriter.h"
#include "platform/tracing.h"
#include "process/background.h"
#include "process/freememory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

using namespace std::chrono_literals;

namespace {

using Documents = std::vector<std::shared_ptr<ConfigDocument>>;
using SaveRequests = std::vector<ConfigDocument::SaveRequest>;
using SaveResult = ConfigDocument::SaveResult;
using SaveResults = std::vector<SaveResult>;

/// What is to be written to a document by the thread that saves it.
struct Write
{
    QString file; // relative to the store
    std::function<void(ICfg& root)> function;
};

/// What a save in another thread is asked to do, besides saving every changed document.
struct SaveOrder
{
    std::vector<Write> writes;
    std::vector<std::function<void(bool isSaved)>> done;
};

/// A save that runs in another thread.
struct BackgroundSave
{
    quint64 number = 0;
    SaveOrder order;
    Documents documents;
    std::future<SaveResults> results; // of the documents, then of the writes
};

class RootConfigNode : public ConfigNode, public IDocumentWriter
{
public:
    using ConfigNode::ConfigNode;

    void WriteDocument(const QString& name, View view, std::function<void(ICfg& root)> write,
                       const std::function<bool()>& whileWaiting) override
    {
        CfgCenter::WriteDocument(name, view, std::move(write), whileWaiting);
    }
};

/// What `CfgCenter` holds for the process.
struct Store
{
    QString directory; // empty: documents live in memory alone
    DocumentAccess access = DocumentAccess::ReadWrite;
    std::map<QString, std::shared_ptr<ConfigDocument>> documents;                 // by file, relative to the store
    std::map<std::pair<QString, QString>, std::unique_ptr<ConfigNode>> rootNodes; // by that file and the key path
    std::optional<BackgroundSave> backgroundSave;
    SaveOrder waiting;                          // for the end of the save in the background
    std::map<QString, QString> versionWarnings; // of the last writes, by file; each told once
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
        node = std::make_unique<RootConfigNode>(document, path);
    ICfg* const result = node.get();
    Tell(notice); // last, as the sink may come back here
    return result;
}

std::shared_ptr<ConfigDocument> ApplicationDocument(View view)
{
    const QString file = ConfigNames::ApplicationFile(view);
    RootNode(file, {}); // opens it
    return TheStore().documents.at(file);
}

/// Writes to a document of its own, as another process would.
SaveResult RunWrite(const Write& write, const QString& file, DocumentAccess access, const VersionFilter& versionFilter)
{
    const auto document = std::make_shared<ConfigDocument>(file, access);
    ConfigNode root(document, {});
    write.function(root);
    const auto request = document->BeginSave(versionFilter);
    SaveResult result = request ? ConfigDocument::RunSave(*request) : SaveResult();
    result.values.clear();
    if (result.notice.isEmpty())
        result.notice = document->TakeNotice();
    return result;
}

bool FinishSave(const Documents& documents, const SaveResults& results, const std::vector<Write>& writes = {})
{
    QStringList errors;
    QStringList notices;
    for (std::size_t i = 0; i < results.size(); ++i) {
        if (!results[i].error.isEmpty())
            errors += results[i].error;
        if (i < documents.size()) {
            documents[i]->FinishSave(results[i]);
            notices += documents[i]->TakeNotice();
            continue;
        }
        const Write& write = writes[i - documents.size()];
        QString& lastWarning = TheStore().versionWarnings[write.file];
        if (std::exchange(lastWarning, results[i].versionWarning) != results[i].versionWarning)
            notices += results[i].versionWarning;
        notices += results[i].notice;
        const auto open = TheStore().documents.find(write.file);
        const bool isOpen = open != TheStore().documents.end();
        // The unsaved changes may be those of an older write that failed.
        if (!results[i].error.isEmpty() || (isOpen && open->second->IsChanged()))
            write.function(*RootNode(write.file, {}));
        else if (isOpen)
            open->second->Reload();
    }
    TheStore().saveError = errors.join(QStringLiteral("; "));
    for (const QString& notice : std::as_const(notices)) // last, as the sink may open documents
        Tell(notice);
    return errors.isEmpty();
}

void Call(const SaveOrder& order, bool isSaved)
{
    for (const auto& function : order.done)
        function(isSaved);
}

/// Waits for the save that runs in another thread, if there is one.
void FinishBackgroundSave()
{
    if (std::optional<BackgroundSave> save = std::exchange(TheStore().backgroundSave, std::nullopt)) {
        const bool isSaved = FinishSave(save->documents, save->results.get(), save->order.writes);
        StartInBackground([] { ReturnFreeMemory(); }); // tens of milliseconds after a long list
        Call(save->order, isSaved);
    }
}

/// Starts to save what is waiting for that, unless a save is running.
void StartBackgroundSave()
{
    Store& store = TheStore();
    if (store.backgroundSave || store.waiting.done.empty())
        return;
    static quint64 number = 0;
    const auto finish = [number = ++number] {
        if (!TheStore().backgroundSave || TheStore().backgroundSave->number != number)
            return;
        FinishBackgroundSave();
        StartBackgroundSave();
    };
    SaveOrder order = std::exchange(store.waiting, {});
    Documents documents;
    auto work = [requests = BeginSave(documents), writes = order.writes, directory = store.directory,
                 access = store.access, filter = TheVersionFilter(), finish]() mutable {
        SaveResults results = RunSave(requests);
        for (Write& write : writes) {
            results.push_back(RunWrite(write, FileIn(directory, write.file), access, filter));
            write.function = nullptr; // its code may be unloaded when this has ended
        }
        QMetaObject::invokeMethod(QCoreApplication::instance(), finish, Qt::QueuedConnection);
        return results;
    };
    store.backgroundSave = {number, std::move(order), std::move(documents), RunInBackground(std::move(work))};
}

bool IsBeingWritten(const QString& file)
{
    const auto has = [&file](const SaveOrder& order) {
        return std::any_of(order.writes.begin(), order.writes.end(),
                           [&file](const Write& write) { return write.file == file; });
    };
    return has(TheStore().waiting) || (TheStore().backgroundSave && has(TheStore().backgroundSave->order));
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
    const QString file = ConfigNames::DocumentFile(view, name);
    if (IsBeingWritten(file))
        SaveDocument();
    return RootNode(file, sub.isEmpty() ? QString() : ConfigNames::ToStep(sub));
}

bool CfgCenter::SaveDocument()
{
    FinishBackgroundSave();
    const SaveOrder order = std::exchange(TheStore().waiting, {});
    for (const Write& write : order.writes)
        write.function(*RootNode(write.file, {}));
    Documents documents;
    const SaveRequests requests = BeginSave(documents);
    const bool isSaved = FinishSave(documents, RunSave(requests));
    if (!documents.empty())
        ReturnFreeMemory();
    Call(order, isSaved);
    return isSaved;
}

void CfgCenter::SaveDocumentAsync(std::function<void(bool isSaved)> done)
{
    TheStore().waiting.done.push_back(std::move(done));
    StartBackgroundSave();
}

void CfgCenter::WriteDocument(const QString& name, View view, std::function<void(ICfg& root)> write,
                              const std::function<bool()>& whileWaiting)
{
    constexpr auto kUnnoticed = 20ms;
    const QString file = ConfigNames::DocumentFile(view, name);
    if (TheStore().directory.isEmpty())
        return write(*RootNode(file, {}));
    const auto isDone = std::make_shared<bool>(false);
    TheStore().waiting.writes.push_back({file, std::move(write)});
    SaveDocumentAsync([isDone](bool /*isSaved*/) { *isDone = true; });
    while (!*isDone) {
        if (TheStore().backgroundSave->results.wait_for(kUnnoticed) == std::future_status::ready) {
            FinishBackgroundSave();
            StartBackgroundSave();
        } else if (!whileWaiting()) {
            return;
        }
    }
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
    if (!TheStore().waiting.done.empty())
        SaveDocument();
    TheStore() = Store();
}

QString CfgCenter::Directory()
{
    return TheStore().directory;
}

bool CfgCenter::IsAppCfgKnown(View view)
{
    return ApplicationDocument(view)->IsKnown();
}

bool CfgCenter::WasAppCfgIntact(View view)
{
    const std::shared_ptr<ConfigDocument> document = ApplicationDocument(view);
    const bool wasIntact = document->WasIntact();
    Tell(document->TakeNotice());
    return wasIntact;
}

bool CfgCenter::IsAppCfgLost(View view)
{
    return ApplicationDocument(view)->IsLost();
}

void CfgCenter::SetNoticeSink(std::function<void(const QString&)> sink)
{
    TheNoticeSink() = std::move(sink);
}

void CfgCenter::SetVersionFilter(std::function<bool(const ConfigValues& before, const ConfigValues& after)> filter)
{
    TheVersionFilter() = std::move(filter);
}
