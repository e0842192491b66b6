// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

// Drops any data: onto the views, that is into the model through the filter, and onto the dialog.

#include "fuzz/entries.h"
#include "platform/cfgcenter.h"
#include "userinterface/vexelconnectdlg/appcounter.h"
#include "userinterface/vexelconnectdlg/filter/connectionfilter.h"
#include "userinterface/vexelconnectdlg/formats/connectionlist.h"
#include "userinterface/vexelconnectdlg/vexelconnectdlggui.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <optional>

using namespace Fuzzing;

namespace {

const QString kUriList = QStringLiteral("text/uri-list");

/// The initial entries for every input.
void AddThreeEntries(ConnectionsModel& model)
{
    for (int i = 0; i < 3; ++i) {
        Connection entry;
        entry.ConnectionName = QString::number(i);
        entry.Selected = i == 1;
        entry.ConnectionStatus = i == 2 ? Connection::InUse : Connection::Free;
        model.AddConnection(entry);
    }
}

/// The dialog with model and launcher, created once.
struct Stage
{
    QTemporaryDir folder;
    ConnectionsModel model{nullptr, QString()};
    AppCounter counter{&model, QString()};
    VexelConnectDlgGUI dialog{nullptr, &model, &counter};
    int boxes = 0; ///< number of message boxes answered

    Stage()
    {
        // Message boxes run a nested event loop, in which this timer fires.
        auto* const answer = new QTimer(&dialog);
        QObject::connect(answer, &QTimer::timeout, [this] {
            if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                ++boxes;
                box->accept();
            }
        });
        answer->start(0);
    }

    QString ListFile() const { return folder.filePath(QStringLiteral("list.xml")); }
};

Stage& TheStage()
{
    static auto* const stage = new Stage;
    return *stage;
}

Entries Read(const QByteArray& document, bool& result)
{
    Entries entries;
    result = ConnectionList::Read(document, [&](const Connection& entry) { entries.push_back(entry); });
    return entries;
}

/// Fills `data` with the MIME types that applications offer in a drag; one bit of `formats` for each.
void FillData(unsigned formats, const QByteArray& document, QMimeData& data)
{
    if (formats & 1U)
        data.setData(ConnectionList::MimeType(), document);
    if (formats & 2U)
        data.setText(QString::fromUtf8(document));
    if (formats & 4U)
        data.setData(kUriList, document);
    if (formats & 8U)
        data.setData(QStringLiteral("application/x-qabstractitemmodeldatalist"), document);
    if (formats & 16U)
        data.setHtml(QString::fromUtf8(document));
}

void DropOntoModel(FuzzedDataProvider& input)
{
    ConnectionsModel model(nullptr, QString());
    AddThreeEntries(model);
    ConnectionFilterModel filter;
    filter.setSourceModel(&model);
    filter.sort(ConnectionsModel::ColumnName);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);

    // FuzzedDataProvider takes numbers from the end of the input, so the document is at its start.
    const int row = input.ConsumeIntegralInRange(-1, 4);
    const int column = input.ConsumeIntegralInRange(-1, int{ConnectionsModel::kColumnCount});
    const QModelIndex parent = input.ConsumeBool() ? filter.index(row, column) : QModelIndex();
    const Qt::DropAction action = input.ConsumeBool() ? Qt::CopyAction : Qt::MoveAction;
    const auto formats = input.ConsumeIntegral<std::uint8_t>();
    QMimeData data;
    FillData(formats, TakeRest(input), data);

    Entries expected = EntriesOf(model);
    bool read = false;
    const Entries added = Read(data.data(ConnectionList::MimeType()), read);
    expected.insert(expected.end(), added.begin(), added.end());
    Require(filter.dropMimeData(&data, action, row, column, parent) == read, "the result is the reader's");
    Require(IsSame(EntriesOf(model), expected), "entries are appended and nothing else changes");
    Require(filter.rowCount() == model.rowCount(), "all entries are visible");
    RequireCounts(model);
}

/// A link that a file manager may offer.
QUrl TakeUrl(FuzzedDataProvider& input, const Stage& stage)
{
    switch (input.ConsumeIntegralInRange(0, 5)) {
    case 0:
        return QUrl::fromLocalFile(stage.folder.path());
    case 1:
        return QUrl::fromLocalFile(stage.folder.filePath(QStringLiteral("missing.xml")));
    case 2:
        return QUrl(QStringLiteral("http://localhost/list.xml"));
    case 3:
        return QUrl(QString());
    default:
        return QUrl::fromLocalFile(stage.ListFile());
    }
}

/// The content of the local file that `data` links to, if it can be read.
std::optional<QByteArray> DroppedFile(const QMimeData& data)
{
    const QString path = data.urls().first().toLocalFile();
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

void DropOntoDialog(FuzzedDataProvider& input, Stage& stage)
{
    stage.model.removeRows(0, stage.model.rowCount());
    AddThreeEntries(stage.model);
    stage.boxes = 0;
    QMimeData data;
    QList<QUrl> urls;
    for (int count = input.ConsumeIntegralInRange(0, 3); count > 0; --count)
        urls.append(TakeUrl(input, stage));
    if (input.ConsumeIntegralInRange(0, 3) != 0)
        data.setUrls(urls);
    QFile file(stage.ListFile());
    Require(file.open(QIODevice::WriteOnly), "the folder can be written");
    file.write(TakeRest(input));
    file.close();
    const Entries before = EntriesOf(stage.model);
    constexpr QPoint kPlace(5, 5);

    QDragEnterEvent enter(kPlace, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&stage.dialog, &enter);
    Require(enter.isAccepted() == data.hasFormat(kUriList), "only drags of files are accepted");
    QDropEvent drop(kPlace, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&stage.dialog, &drop);
    RequireCounts(stage.model);

    if (!data.hasFormat(kUriList)) {
        Require(IsSame(EntriesOf(stage.model), before) && stage.boxes == 0, "without files nothing is imported");
        return;
    }
    if (data.urls().size() != 1) {
        Require(IsSame(EntriesOf(stage.model), before), "several files are not imported");
        Require(stage.boxes == 1, "a message box reports several files");
        return;
    }
    bool read = false;
    Entries entries;
    if (const std::optional<QByteArray> document = DroppedFile(data))
        entries = Read(*document, read);
    Require(stage.boxes == (read ? 0 : 1), "a message box reports an invalid file");
    Require(IsSame(EntriesOf(stage.model), Freed(read ? entries : WithoutUnwritable(before))),
            "the entries are those of the file, or the previous ones, all free");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Tidy tidy;
    FuzzedDataProvider input(data, size);
    // Message boxes are slow, so only few inputs go to the dialog.
    if (input.ConsumeIntegralInRange(0, 31) == 1)
        DropOntoDialog(input, TheStage());
    else
        DropOntoModel(input);
    return 0;
}
