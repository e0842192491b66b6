// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "tests/support/dialogfixture.h"
#include "tests/support/system/system.h"
#include "tests/support/testmain.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>

namespace {

const QString kSource = QStringLiteral("userinterface/vexelconnectdlg/vexelconnectdlggui");

QString FailureText(const QString& fileName)
{
    return QStringLiteral("Could not import connection entries from file\n\"%1\"\n\nProbably the file does not include "
                          "proper connection data.\n\nWill keep old connections.")
        .arg(fileName);
}

} // namespace

/// Import, export and dropped files.
class TestDialogFiles : public QObject
{
    Q_OBJECT

private slots:
    // Native file dialogs have no widgets for the test.
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }
    void init() { m_fixture = std::make_unique<DialogFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void exportWritesWholeList();
    void exportToUnwritableFileIsTraced();
    void exportWithoutNameIsTraced();
    void importReplacesList();
    void failedImportKeepsList_data();
    void failedImportKeepsList();
    void importWithoutNameIsReported();
    void importOfUnreadableFileIsReported();
    void importOfTooLongListIsReported();
    void failedImportKeepsListOfAnySize();
    void fileNameIsShownAsPlainText();
    void noTraceWhileTracesAreOff();

    void actionsAskForTheFile();
    void fileDialogsStartInLastFolder();
    void cancelledExportDoesNothing();
    void cancelledImportReportsEmptyName();

    void textDragIsRefused();
    void fileDragIsAccepted();
    void proposedActionIsAccepted();
    void droppedFileIsImported_data();
    void droppedFileIsImported();
    void droppedEntriesAreSortedIn();
    void dropOfOtherThanOneFileIsReported_data();
    void dropOfOtherThanOneFileIsReported();
    void dropOfRemoteUrlIsReported();
    void dropIsRefusedOnlyWhileBlocked_data();
    void dropIsRefusedOnlyWhileBlocked();
    void dropDuringImportBox();
    void importDuringImportBox_data();
    void importDuringImportBox();
    void dropWithoutUrlsIsIgnored();
    void dropIsAcceptedWhileEntriesAreInUse();
    void rowsDroppedOnTableAreCopied();

private:
    QByteArray ThreeEntries()
    {
        ConnectionsModel other(nullptr, QString());
        Connection inUse = Entry("two");
        inUse.ConnectionStatus = Connection::InUse;
        other.AddConnection(Entry("one", Connection::KiteBravo, true));
        other.AddConnection(inUse);
        other.AddConnection(Entry("three"));
        return other.ToByteArray();
    }

    /// Accepts the next file dialog with `fileName`, or cancels it if that is empty. Stores its properties in
    /// `m_fileDialog`.
    void AnswerFileDialog(const QString& fileName)
    {
        auto* const timer = new QTimer(m_fixture->dialog);
        QObject::connect(timer, &QTimer::timeout, timer, [this, timer, fileName] {
            auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            timer->deleteLater();
            m_fileDialog = {dialog->windowTitle(), dialog->nameFilters(), dialog->acceptMode(), dialog->fileMode(),
                            dialog->directory().canonicalPath()};
            if (fileName.isEmpty()) {
                dialog->reject();
                return;
            }
            dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(fileName);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        timer->start(1);
    }

    struct FileDialog
    {
        QString title;
        QStringList filters;
        QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
        QFileDialog::FileMode fileMode = QFileDialog::AnyFile;
        QString directory;
    };
    FileDialog m_fileDialog;
    std::unique_ptr<DialogFixture> m_fixture;
};

void TestDialogFiles::exportWritesWholeList()
{
    m_fixture->Build();
    m_fixture->Add({Entry("b", Connection::KiteBravo, true), Entry("a & <b>")});
    m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->setText(QStringLiteral("nothing matches this"));
    MessageBoxes boxes;
    TraceRecorder traces;
    const QString path = m_fixture->WriteFile(QStringLiteral("list.xml"), QByteArray(100000, 'x'));
    m_fixture->dialog->Export(path);
    QCOMPARE(Files::Read(path), m_fixture->model->ToByteArray());
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(traces.Messages(kSource), QStringList());
    QCOMPARE(QDir(m_fixture->DataPath(QString())).entryList({QStringLiteral("list.xml*")}).size(), 1);
}

void TestDialogFiles::exportToUnwritableFileIsTraced()
{
    m_fixture->Build();
    const QString path = m_fixture->DataPath(QStringLiteral("directory.xml"));
    QVERIFY(QDir().mkdir(path));
    MessageBoxes boxes;
    TraceRecorder traces;
    m_fixture->dialog->Export(path);
    m_fixture->dialog->Export(m_fixture->DataPath(QStringLiteral("missing/list.xml")));
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(traces.Reports().size(), 2);
    QCOMPARE(traces.Reports().at(0).message,
             QStringLiteral("VexelConnectDlgGUI::Export(): could not open file \"%1\" for writing").arg(path));
    QCOMPARE(traces.Reports().at(0).sourceFile, kSource);
    QCOMPARE(traces.Reports().at(0).line, quint16{421});
    QCOMPARE(traces.Reports().at(1).line, quint16{421});
    QVERIFY(QFileInfo(path).isDir());
}

void TestDialogFiles::exportWithoutNameIsTraced()
{
    m_fixture->Build();
    MessageBoxes boxes;
    TraceRecorder traces;
    m_fixture->dialog->Export(QString());
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(traces.Reports().first().message, QStringLiteral("VexelConnectDlgGUI::Export(): no file name given"));
    QCOMPARE(traces.Reports().first().sourceFile, kSource);
    QCOMPARE(traces.Reports().first().line, quint16{426});
}

void TestDialogFiles::importReplacesList()
{
    m_fixture->Build();
    m_fixture->Add({Entry("old")});
    MessageBoxes boxes;
    QVERIFY(m_fixture->dialog->Import(m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries())));
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")}));
    QVERIFY(m_fixture->model->GetConnection(0).Selected);
    QCOMPARE(m_fixture->model->CountInUse(), 0);
    QCOMPARE(m_fixture->ShownNames(),
             (QStringList{QStringLiteral("one"), QStringLiteral("three"), QStringLiteral("two")}));
}

void TestDialogFiles::failedImportKeepsList_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("noise") << QByteArray("\x00\xff\x13\x37 not a list", 16);
    QTest::newRow("other xml") << QByteArray("<other><entry/></other>");
    QTest::newRow("truncated") << ThreeEntries().left(ThreeEntries().size() * 2 / 3);
    QTest::newRow("entity declarations") << QByteArray(
        "<!DOCTYPE a [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">]>"
        "<ConnectionEntries><Connection><ConnectionName>&b;"
        "</ConnectionName></Connection></ConnectionEntries>");
}

void TestDialogFiles::failedImportKeepsList()
{
    QFETCH(QByteArray, content);
    m_fixture->Build();
    m_fixture->Add({Entry("z", Connection::Heron, true), Entry("a"), Entry("m", Connection::KiteEcho, true)});
    const QByteArray before = m_fixture->model->ToByteArray();
    const QString path = m_fixture->WriteFile(QStringLiteral("list.xml"), content);
    MessageBoxes boxes;
    QVERIFY(!m_fixture->dialog->Import(path));
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text, FailureText(path));
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(boxes.Boxes().first().hasParent);
    QCOMPARE(m_fixture->model->ToByteArray(), before);
}

void TestDialogFiles::importWithoutNameIsReported()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteEcho, true)});
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    MessageBoxes boxes;
    TraceRecorder traces;
    QVERIFY(!m_fixture->dialog->Import(QString()));
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().text, FailureText(QString()));
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(traces.Reports().first().message, QStringLiteral("VexelConnectDlgGUI::Import(): no file name given"));
    QCOMPARE(traces.Reports().first().sourceFile, kSource);
    QCOMPARE(traces.Reports().first().line, quint16{388});
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
    QVERIFY(m_fixture->model->GetConnection(0).Selected);
    QCOMPARE(m_fixture->model->CountInUse(), 0);
}

void TestDialogFiles::importOfUnreadableFileIsReported()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    const QString pipe = System::MakePipe(m_fixture->DataPath(QStringLiteral("pipe.xml")));
    QVERIFY(!pipe.isEmpty());
    const QString huge = m_fixture->WriteFile(QStringLiteral("huge.xml"), ThreeEntries());
    QVERIFY(QFile::resize(huge, ConnectionList::kMaximumSize + 1));
    QStringList unreadable{m_fixture->DataPath(QStringLiteral("missing.xml")), huge,
                           m_fixture->DataPath(QString())}; // the last is a directory
    // Opening a pipe without a writer blocks, and reading some devices never ends.
    unreadable += pipe;
    unreadable += System::Devices();
    for (const QString& path : unreadable) {
        MessageBoxes boxes;
        TraceRecorder traces;
        QVERIFY(!m_fixture->dialog->Import(path));
        QCOMPARE(boxes.Count(), 1);
        QCOMPARE(boxes.Boxes().first().text, FailureText(path));
        QCOMPARE(traces.Reports().size(), 1);
        QCOMPARE(traces.Reports().first().message,
                 QStringLiteral("VexelConnectDlgGUI::Import(): could not open file \"%1\" for reading").arg(path));
        QCOMPARE(traces.Reports().first().line, quint16{383});
        QCOMPARE(traces.Reports().first().sourceFile, kSource);
        QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
    }
}

void TestDialogFiles::importOfTooLongListIsReported()
{
    // Without the fixture, whose model testers take long for so many rows.
    ConnectionsModel model(nullptr, QString());
    AppCounter counter(&model, QString());
    VexelConnectDlgGUI dialog(nullptr, &model, &counter);
    model.AddConnection(Entry("a"));
    const QString path = m_fixture->WriteFile(
        QStringLiteral("long.xml"), "<ConnectionEntries>" +
                                        QByteArray("<Connection/>").repeated(ConnectionList::kMaximumEntries + 1) +
                                        "</ConnectionEntries>");
    MessageBoxes boxes;
    TraceRecorder traces;
    QVERIFY(!dialog.Import(path));
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().text, FailureText(path));
    QCOMPARE(traces.Messages(), QStringList(QStringLiteral("XML parsing error occurred in row 1 column 2600032. "
                                                           "\"The list would have too many entries.\"")));
    QCOMPARE(model.rowCount(), 1);
    QCOMPARE(model.GetConnection(0).ConnectionName, QStringLiteral("a"));
}

void TestDialogFiles::failedImportKeepsListOfAnySize()
{
    m_fixture->Build();
    Connection large = Entry("large");
    large.Subsystem = QString(ConnectionList::kMaximumSize, u'a');
    m_fixture->Add({large, Entry("b")});
    const MessageBoxes boxes;
    QVERIFY(!m_fixture->dialog->Import(m_fixture->WriteFile(QStringLiteral("other.xml"), "<a/>")));
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("large"), QStringLiteral("b")}));
    QCOMPARE(m_fixture->model->GetConnection(0).Subsystem.size(), large.Subsystem.size());
}

void TestDialogFiles::fileNameIsShownAsPlainText()
{
    m_fixture->Build();
    MessageBoxes boxes;
    m_fixture->dialog->Import(QStringLiteral("<b>%1</b>"));
    QCOMPARE(boxes.Boxes().first().text, FailureText(QStringLiteral("<b>%1</b>")));
    QCOMPARE(boxes.Boxes().first().textFormat, Qt::PlainText);
}

void TestDialogFiles::noTraceWhileTracesAreOff()
{
    m_fixture->Build();
    MessageBoxes boxes;
    TraceRecorder traces(ErrorHandler::Assertion);
    m_fixture->dialog->Import(QString());
    m_fixture->dialog->Export(QString());
    QCOMPARE(traces.Reports().size(), 0);
}

void TestDialogFiles::actionsAskForTheFile()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    const QString path = m_fixture->DataPath(QStringLiteral("exported.xml"));
    AnswerFileDialog(path);
    m_fixture->Action("m_pExportAction")->trigger();
    QCOMPARE(m_fileDialog.title, QStringLiteral("Export Connection Settings"));
    QCOMPARE(m_fileDialog.filters, QStringList{QStringLiteral("*.xml")});
    QCOMPARE(m_fileDialog.acceptMode, QFileDialog::AcceptSave);
    QCOMPARE(m_fileDialog.fileMode, QFileDialog::AnyFile);
    QVERIFY(QFile::exists(path));

    m_fixture->model->removeRows(0, 1);
    AnswerFileDialog(path);
    m_fixture->Action("m_pImportAction")->trigger();
    QCOMPARE(m_fileDialog.title, QStringLiteral("Import Connection Settings"));
    QCOMPARE(m_fileDialog.filters, QStringList{QStringLiteral("*.xml")});
    QCOMPARE(m_fileDialog.acceptMode, QFileDialog::AcceptOpen);
    QCOMPARE(m_fileDialog.fileMode, QFileDialog::ExistingFile);
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
}

void TestDialogFiles::fileDialogsStartInLastFolder()
{
    // A dialog that is given no folder starts in that of the last one.
    m_fixture->Build();
    m_fixture->Show();
    MessageBoxes boxes;
    const QString folder = QDir(m_fixture->DataPath(QString())).canonicalPath();
    QFileDialog().setDirectory(folder);
    for (const char* action : {"m_pExportAction", "m_pImportAction"}) {
        m_fileDialog.directory.clear();
        AnswerFileDialog(QString());
        m_fixture->Action(action)->trigger();
        QCOMPARE(m_fileDialog.directory, folder);
    }
}

void TestDialogFiles::cancelledExportDoesNothing()
{
    m_fixture->Build();
    m_fixture->Show();
    MessageBoxes boxes;
    const TraceRecorder traces;
    AnswerFileDialog(QString());
    m_fixture->Action("m_pExportAction")->trigger();
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(traces.Reports().size(), 1);
    QCOMPARE(traces.Reports().first().message, QStringLiteral("VexelConnectDlgGUI::Export(): no file name given"));
    QCOMPARE(QDir(m_fixture->DataPath(QString())).entryList(QDir::Files), QStringList());
}

void TestDialogFiles::cancelledImportReportsEmptyName()
{
    m_fixture->Build();
    m_fixture->Add({Entry("b"), Entry("a")});
    m_fixture->Show();
    MessageBoxes boxes;
    AnswerFileDialog(QString());
    m_fixture->Action("m_pImportAction")->trigger();
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().text, FailureText(QString()));
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("b"), QStringLiteral("a")}));
}

void TestDialogFiles::textDragIsRefused()
{
    m_fixture->Build();
    QMimeData data;
    data.setText(QStringLiteral("text"));
    QVERIFY(!DialogFixture::DragEnter(m_fixture->dialog, data));
}

void TestDialogFiles::fileDragIsAccepted()
{
    m_fixture->Build();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/a"))});
    QVERIFY(DialogFixture::DragEnter(m_fixture->dialog, data));
    // A file manager also offers the name as text.
    data.setText(QStringLiteral("/a"));
    QVERIFY(DialogFixture::DragEnter(m_fixture->BasicView()->viewport(), data));
    QVERIFY(DialogFixture::DragEnter(m_fixture->DetailsView()->viewport(), data));
}

void TestDialogFiles::proposedActionIsAccepted()
{
    m_fixture->Build();
    m_fixture->Show();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries()))});
    // Not another one that the source also offers.
    const auto isProposed = [this](QDropEvent&& event) {
        event.setDropAction(Qt::MoveAction);
        event.ignore();
        QCoreApplication::sendEvent(m_fixture->dialog, &event);
        return event.isAccepted() && event.proposedAction() == Qt::CopyAction && event.dropAction() == Qt::CopyAction;
    };
    const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
    QVERIFY(isProposed(QDragEnterEvent(QPoint(5, 5), offered, &data, Qt::LeftButton, Qt::ControlModifier)));
    QVERIFY(isProposed(QDropEvent(QPointF(5, 5), offered, &data, Qt::LeftButton, Qt::ControlModifier)));
    QCOMPARE(m_fixture->model->rowCount(), 3);
}

void TestDialogFiles::droppedFileIsImported_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("dialog") << QByteArray();
    QTest::newRow("basic view") << QByteArray("m_pBasicView");
    QTest::newRow("details view") << QByteArray("m_pDetailsView");
    QTest::newRow("filter pattern") << QByteArray("m_pFilterPatternLineEdit");
}

void TestDialogFiles::droppedFileIsImported()
{
    QFETCH(QByteArray, target);
    m_fixture->Build();
    m_fixture->Add({Entry("old")});
    m_fixture->Show();
    const QString path = m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries());
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    data.setText(path);
    QWidget* widget = target.isEmpty() ? m_fixture->dialog : m_fixture->Find<QWidget>(target.constData());
    if (const auto* const view = qobject_cast<QTreeView*>(widget))
        widget = view->viewport();
    QVERIFY(DialogFixture::Drop(widget, data));
    QCOMPARE(m_fixture->Find<QLineEdit>("m_pFilterPatternLineEdit")->text(), QString());
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")}));
}

void TestDialogFiles::droppedEntriesAreSortedIn()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a3"), Entry("a1"), Entry("b")});
    m_fixture->dialog->m_pFilterPatternLineEdit->setText(QStringLiteral("a"));
    QMimeData data;
    data.setData(QStringLiteral("text/plain"),
                 "<x><Connection><ConnectionName>a4</ConnectionName></Connection><Connection><ConnectionName>c"
                 "</ConnectionName></Connection><Connection><ConnectionName>a2</ConnectionName></Connection></x>");
    const QSignalSpy sorted(m_fixture->Proxy(), &QAbstractItemModel::layoutChanged);
    QVERIFY(m_fixture->Proxy()->dropMimeData(&data, Qt::CopyAction, 0, 0, QModelIndex()));
    QCOMPARE(m_fixture->ShownNames(), QStringLiteral("a1 a2 a3 a4").split(u' '));
    QCOMPARE(m_fixture->Names(), QStringLiteral("a3 a1 b a4 c a2").split(u' '));
    QCOMPARE(sorted.size(), 1);
    // Later changes are sorted in at once.
    m_fixture->Add({Entry("a0")});
    QCOMPARE(m_fixture->ShownNames(), QStringLiteral("a0 a1 a2 a3 a4").split(u' '));
}

void TestDialogFiles::dropOfOtherThanOneFileIsReported_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << QStringLiteral("Not enough files dropped.\n\nPlease drop at least one file.");
    QTest::newRow("two") << 2 << QStringLiteral("Too much files dropped (2 files).\n\nPlease drop at most one file.");
}

void TestDialogFiles::dropOfOtherThanOneFileIsReported()
{
    QFETCH(int, count);
    QFETCH(QString, text);
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    const QString path = m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries());
    QMimeData data;
    // An empty list of URLs.
    data.setData(QStringLiteral("text/uri-list"), QByteArray());
    if (count > 0)
        data.setUrls(QList<QUrl>(count, QUrl::fromLocalFile(path)));
    MessageBoxes boxes;
    QVERIFY(DialogFixture::Drop(m_fixture->dialog, data));
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(boxes.Boxes().first().title, QStringLiteral("Info"));
    QCOMPARE(boxes.Boxes().first().text, text);
    QCOMPARE(boxes.Boxes().first().buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
}

void TestDialogFiles::dropOfRemoteUrlIsReported()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->Show();
    for (const char* url : {"http://192.0.2.1/list.xml", "::::", "file:"}) {
        QMimeData data;
        data.setData(QStringLiteral("text/uri-list"), QByteArray(url) + "\r\n");
        MessageBoxes boxes;
        DialogFixture::Drop(m_fixture->dialog, data);
        QCOMPARE(boxes.Count(), 1);
        QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
    }
}

void TestDialogFiles::dropIsRefusedOnlyWhileBlocked_data()
{
    QTest::addColumn<Qt::WindowModality>("modality");
    QTest::addColumn<bool>("ofTheDialog");
    QTest::addColumn<bool>("refused");
    QTest::newRow("modal to another window") << Qt::WindowModal << false << false;
    QTest::newRow("modal to the dialog") << Qt::WindowModal << true << true;
    QTest::newRow("modal to all windows") << Qt::ApplicationModal << false << true;
    QTest::newRow("not modal") << Qt::NonModal << true << false;
}

void TestDialogFiles::dropIsRefusedOnlyWhileBlocked()
{
    QFETCH(Qt::WindowModality, modality);
    QFETCH(bool, ofTheDialog);
    QFETCH(bool, refused);
    m_fixture->Build();
    m_fixture->Add({Entry("old")});
    m_fixture->Show();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries()))});

    QWidget other;
    other.show();
    QMessageBox box(ofTheDialog ? static_cast<QWidget*>(m_fixture->dialog) : &other);
    box.setWindowModality(modality);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QCOMPARE(DialogFixture::Drop(m_fixture->dialog, data), !refused);
    QCOMPARE(m_fixture->Names().size(), refused ? 1 : 3);

    box.close();
    QVERIFY(DialogFixture::Drop(m_fixture->dialog, data));
    QCOMPARE(m_fixture->Names().size(), 3);
}

void TestDialogFiles::dropDuringImportBox()
{
    m_fixture->Build();
    m_fixture->Add({Entry("b"), Entry("a")});
    m_fixture->Show();
    QMimeData two;
    two.setUrls({QUrl(QStringLiteral("file:///a")), QUrl(QStringLiteral("file:///b"))});
    QMimeData bad;
    bad.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("bad.xml"), "bad"))});

    std::unique_ptr<MessageBoxes> boxes;
    // Queued, so that the drops happen while the box of the import below is open.
    QTimer::singleShot(0, m_fixture->dialog, [&] {
        QVERIFY(QApplication::activeModalWidget());
        QTimer::singleShot(0, m_fixture->dialog, [&] {
            boxes = std::make_unique<MessageBoxes>();
            DialogFixture::Drop(m_fixture->dialog, two);
        });
        DialogFixture::Drop(m_fixture->dialog, bad);
    });
    QVERIFY(!m_fixture->dialog->Import(QString()));
    QVERIFY(boxes);
    QCOMPARE(boxes->Count(), 2);
    QCOMPARE(boxes->Boxes().first().text,
             QStringLiteral("Too much files dropped (2 files).\n\nPlease drop at most one file."));
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("b"), QStringLiteral("a")}));
}

void TestDialogFiles::importDuringImportBox_data()
{
    QTest::addColumn<bool>("good");
    QTest::newRow("another bad file") << false;
    QTest::newRow("a good file") << true;
}

void TestDialogFiles::importDuringImportBox()
{
    QFETCH(bool, good);
    m_fixture->Build();
    m_fixture->Add({Entry("b"), Entry("a")});
    const QString bad = m_fixture->WriteFile(QStringLiteral("bad.xml"), "bad");
    const QString other = good ? m_fixture->WriteFile(QStringLiteral("good.xml"), ThreeEntries()) : bad;

    // The list is empty while the box about the first file is open.
    std::unique_ptr<MessageBoxes> boxes;
    QTimer::singleShot(0, m_fixture->dialog, [&] {
        QVERIFY(QApplication::activeModalWidget());
        QCOMPARE(m_fixture->model->rowCount(), 0);
        QTimer::singleShot(0, m_fixture->dialog, [&] { boxes = std::make_unique<MessageBoxes>(); });
        QCOMPARE(m_fixture->dialog->Import(other), good);
    });
    QVERIFY(!m_fixture->dialog->Import(bad));
    QTRY_VERIFY(boxes);
    QCOMPARE(m_fixture->Names(),
             good ? (QStringList{QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")})
                  : (QStringList{QStringLiteral("b"), QStringLiteral("a")}));
}

void TestDialogFiles::dropWithoutUrlsIsIgnored()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    QMimeData data;
    data.setData(QStringLiteral("text/plain"), ThreeEntries());
    MessageBoxes boxes;
    QVERIFY(!DialogFixture::Drop(m_fixture->dialog, data));
    // Nor after a drag with files.
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries()))});
    QVERIFY(DialogFixture::DragEnter(m_fixture->dialog, files));
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    event.accept();
    QCoreApplication::sendEvent(m_fixture->dialog, &event);
    QVERIFY(!event.isAccepted());
    QCOMPARE(boxes.Count(), 0);
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
}

void TestDialogFiles::dropIsAcceptedWhileEntriesAreInUse()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a")});
    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    m_fixture->Show();
    QMimeData good;
    good.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("list.xml"), ThreeEntries()))});
    QMimeData bad;
    bad.setUrls({QUrl::fromLocalFile(m_fixture->WriteFile(QStringLiteral("bad.xml"), "bad"))});

    MessageBoxes boxes;
    QVERIFY(DialogFixture::Drop(m_fixture->dialog, bad));
    QCOMPARE(boxes.Count(), 1);
    QCOMPARE(m_fixture->Names(), QStringList{QStringLiteral("a")});
    QCOMPARE(m_fixture->model->CountInUse(), 0);

    m_fixture->model->SetConnectionStatus(m_fixture->model->GetConnection(0), Connection::InUse);
    QVERIFY(DialogFixture::Drop(m_fixture->dialog, good));
    QCOMPARE(m_fixture->model->rowCount(), 3);
    QCOMPARE(m_fixture->model->CountInUse(), 0);
}

void TestDialogFiles::rowsDroppedOnTableAreCopied()
{
    m_fixture->Build();
    m_fixture->Add({Entry("a", Connection::KiteBravo, true), Entry("b")});
    m_fixture->Show();
    const std::unique_ptr<QMimeData> rows(m_fixture->Proxy()->mimeData({m_fixture->Proxy()->index(0, 0)}));
    QVERIFY(DialogFixture::DragEnter(m_fixture->BasicView()->viewport(), *rows));
    QVERIFY(DialogFixture::Drop(m_fixture->BasicView()->viewport(), *rows));
    QCOMPARE(m_fixture->Names(), (QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("a")}));
    QVERIFY(m_fixture->model->GetConnection(2).Selected);
}

VEXEL_TEST(QTEST_MAIN, TestDialogFiles)
#include "tst_dialogfiles.moc"
