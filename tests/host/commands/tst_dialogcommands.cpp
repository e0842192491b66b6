// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/commands/dialogcommands.h"

#include "control/controlline.h"
#include "host/commands/dialoghost.h"
#include "tests/host/plugin/tellingdialog.h"
#include "tests/support/testmain.h"

#include <QJsonArray>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTest>

#include <functional>
#include <memory>
#include <optional>

namespace {

/// Keeps an answer.
class Answer : public ControlReply
{
    Q_OBJECT

public:
    void Send(const QJsonObject& line) override { lines.append(line); }
    void SendLines(const QByteArray& text) override
    {
        for (const QByteArray& line : text.split('\n'))
            if (!line.isEmpty())
                lines.append(ControlLine::Read(line).value_or(QJsonObject()));
    }
    void End(int endCode, const QString& endError) override
    {
        QVERIFY(!code);
        code = endCode;
        error = endError;
    }

    QStringList Texts(const char* key) const
    {
        QStringList texts;
        for (const QJsonObject& line : lines)
            texts.append(line.value(QLatin1String(key)).toVariant().toString());
        return texts;
    }

    QList<QJsonObject> lines;
    std::optional<int> code;
    QString error;
};

/// The program around the dialog.
struct FakeHost : DialogHost
{
    QString Save() override
    {
        ++saved;
        return saveError;
    }
    QString ShowDialog() override
    {
        ++shown;
        return {};
    }
    QByteArray Picture(QString* error) override
    {
        *error = pictureError;
        return pictureError.isEmpty() ? QByteArray("a picture") : QByteArray();
    }
    void Quit() override { ++quit; }

    int saved = 0;
    int shown = 0;
    int quit = 0;
    QString saveError;
    QString pictureError;
};

/// Three entries: "mast", "pier" (ticked), "quay". Connecting makes them "In Use", except those in `refused`, and then
/// calls `meanwhile`.
struct Commands
{
    Commands()
    {
        fake.Add(QStringLiteral("mast"));
        fake.Add(QStringLiteral("pier"), true);
        fake.Add(QStringLiteral("quay"));
        fake.applications = QList<QVariantMap>(3);
        dialog = FindDialog();
        commands = std::make_unique<DialogCommands>(*dialog, host);
        fake.onConnect = [this] {
            for (const int row : fake.connected)
                if (!refused.contains(dialog->Name(row)))
                    fake.SetStatus(row, 1);
            if (meanwhile)
                meanwhile();
        };
    }

    void Execute(const char* command, QJsonObject arguments = {})
    {
        arguments.insert(QStringLiteral("command"), QLatin1String(command));
        commands->Execute({arguments, document}, &answer);
    }

    /// The application of the entry in `row` ends.
    void EndApplication(int row, const QVariantMap& end)
    {
        fake.applications[row] = end;
        fake.SetStatus(row, 0);
    }

    TellingDialog fake;
    FakeHost host;
    std::optional<ConnectDialog> dialog;
    std::unique_ptr<DialogCommands> commands;
    Answer answer;
    QByteArray document;
    QStringList refused;
    std::function<void()> meanwhile;
};

QJsonObject Names(const QStringList& names, bool waits = false)
{
    return {{QStringLiteral("names"), QJsonArray::fromStringList(names)}, {QStringLiteral("wait"), waits}};
}

const QVariantMap kDone{{QStringLiteral("program"), QStringLiteral("app")},
                        {QStringLiteral("process"), 7},
                        {QStringLiteral("exitCode"), 0}};
const QVariantMap kFailed{{QStringLiteral("program"), QStringLiteral("app")}, {QStringLiteral("exitCode"), 5}};
const QVariantMap kCrashed{{QStringLiteral("program"), QStringLiteral("app")},
                           {QStringLiteral("crashed"), true},
                           {QStringLiteral("signal"), 11}};

} // namespace

class TestDialogCommands : public QObject
{
    Q_OBJECT

private slots:
    void unknownCommandIsAnError();
    void listTellsEveryEntryAndWhoServesIt();
    void statusTellsOfTheEntriesInUse();
    void exportIsAConnectionList();
    void pictureIsSent();
    void connectTakesExactlyTheseEntries();
    void connectByTickTakesTheTickedEntries();
    void connectByTickWithoutTicksConnectsNothing();
    void userMayRemoveEntriesWhileEntriesAreConnected();
    void programThatEndsWhileConnectingSaysSoItself();
    void otherRequestsAreAnsweredWhileEntriesAreConnected();
    void unknownNamesConnectNothing();
    void entryThatDidNotStartIsReported();
    void entryInUseIsReported();
    void textOfABoxGoesToTheCaller();
    void waitTellsEachChangeUntilAllAreFree();
    void applicationThatFailsCounts_data();
    void applicationThatFailsCounts();
    void waitWithoutEntriesInUseEndsAtOnce();
    void waitTakesInLaterEntries();
    void callerMayGoAtAnyTime();
    void watchTellsChangesOfTheList();
    void picturesOfTheCourseAreSent();
    void changesAreRefusedWhileEntriesAreInUse_data();
    void changesAreRefusedWhileEntriesAreInUse();
    void openBoxRefusesChangesAndConnecting_data();
    void openBoxRefusesChangesAndConnecting();
    void usersConnectRefusesChangesAndConnecting_data();
    void usersConnectRefusesChangesAndConnecting();
    void importRefusesSave();
    void documentWithoutEntriesIsNotImported();
    void entryThatIsInUseMeanwhileStopsTheImport();
    void callersThatHaveGoneAreNotServed();
    void listIsClearedOnRequest();
    void saveReportsFailure();
    void showShowsTheDialog();
    void quitSavesAndEndsOnceTheAnswerIsRead();
    void quitThatCannotSaveNeedsForce();
};

void TestDialogCommands::unknownCommandIsAnError()
{
    Commands run;
    run.Execute("frobnicate");
    QCOMPARE(run.answer.code, 1);
    QVERIFY(run.answer.error.contains(QStringLiteral("frobnicate")));
}

void TestDialogCommands::listTellsEveryEntryAndWhoServesIt()
{
    Commands run;
    run.fake.applications[2] = kDone;
    run.fake.SetStatus(2, 1);
    run.Execute("list");
    QTRY_COMPARE(run.answer.code, 0);
    QCOMPARE(run.answer.Texts("type"), QStringList(3, QStringLiteral("entry")));
    QCOMPARE(run.answer.Texts("name"),
             (QStringList{QStringLiteral("mast"), QStringLiteral("pier"), QStringLiteral("quay")}));
    QCOMPARE(run.answer.Texts("statusText"),
             (QStringList{QStringLiteral("Free"), QStringLiteral("Free"), QStringLiteral("In Use")}));
    QCOMPARE(run.answer.Texts("program"), (QStringList{QString(), QString(), QStringLiteral("app")}));
    QCOMPARE(run.answer.Texts("process"), (QStringList{QString(), QString(), QStringLiteral("7")}));
}

void TestDialogCommands::statusTellsOfTheEntriesInUse()
{
    Commands run;
    run.fake.SetStatus(2, 1);
    run.Execute("status");
    QTRY_COMPARE(run.answer.code, 0);
    QCOMPARE(run.answer.Texts("type"), (QStringList{QStringLiteral("host"), QStringLiteral("entry")}));
    QCOMPARE(run.answer.lines.at(0).value(QLatin1String("entries")).toInt(), 3);
    QCOMPARE(run.answer.lines.at(0).value(QLatin1String("hidden")).toBool(), true);
    QCOMPARE(run.answer.lines.at(1).value(QLatin1String("name")).toString(), QStringLiteral("quay"));
}

void TestDialogCommands::exportIsAConnectionList()
{
    Commands run;
    run.Execute("export");
    QTRY_COMPARE(run.answer.code, 0);
    const QString document = run.answer.Texts("text").join(QString());
    QVERIFY(document.startsWith(QStringLiteral("<?xml")));
    QCOMPARE(document.count(QStringLiteral("<Connection>")), 3);
    QVERIFY(document.contains(QStringLiteral("pier")));
}

void TestDialogCommands::pictureIsSent()
{
    Commands run;
    run.Execute("picture");
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(QByteArray::fromBase64(run.answer.Texts("base64").join(QString()).toLatin1()), QByteArray("a picture"));

    Commands failing;
    failing.host.pictureError = QStringLiteral("too large");
    failing.Execute("picture");
    QCOMPARE(failing.answer.Texts("text"), QStringList{QStringLiteral("too large")});
}

void TestDialogCommands::connectTakesExactlyTheseEntries()
{
    Commands run;
    run.Execute("connect", Names({QStringLiteral("quay"), QStringLiteral("mast")}));
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.answer.lines, QList<QJsonObject>());
    QCOMPARE(run.fake.connected, (QList<int>{0, 2}));
}

void TestDialogCommands::connectByTickTakesTheTickedEntries()
{
    Commands run;
    run.Execute("connect", {{QStringLiteral("selected"), true}});
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.fake.connected, QList<int>{1});
}

void TestDialogCommands::connectByTickWithoutTicksConnectsNothing()
{
    Commands run;
    run.fake.SetTicked(1, false);
    run.Execute("connect", {{QStringLiteral("selected"), true}});
    QCOMPARE(run.answer.code, 3);
    QCOMPARE(run.answer.error, QStringLiteral("no entry is ticked"));
}

void TestDialogCommands::userMayRemoveEntriesWhileEntriesAreConnected()
{
    Commands run;
    run.meanwhile = [&run] {
        run.fake.entries.removeRow(1);
        run.fake.entries.removeRow(0);
    };
    run.refused = QStringList{QStringLiteral("pier")};
    run.Execute("connect", Names({QStringLiteral("mast"), QStringLiteral("pier"), QStringLiteral("quay")}));
    QCOMPARE(run.answer.code, 3);
    QCOMPARE(run.answer.Texts("text"), QStringList{QStringLiteral("\"pier\" was removed before it was connected")});
}

void TestDialogCommands::programThatEndsWhileConnectingSaysSoItself()
{
    Commands run;
    run.refused = QStringList{QStringLiteral("mast")};
    run.fake.isProgramEnding = true;
    run.Execute("connect", Names({QStringLiteral("mast")}));
    QCoreApplication::processEvents();
    QVERIFY(!run.answer.code);
    QCOMPARE(run.answer.lines, QList<QJsonObject>());
}

void TestDialogCommands::otherRequestsAreAnsweredWhileEntriesAreConnected()
{
    Commands run;
    Answer list;
    Answer save;
    run.meanwhile = [&] {
        run.dialog->Window()->setProperty("isConnecting", true);
        run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("list")}}, {}}, &list);
        run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("save")}}, {}}, &save);
        QTRY_COMPARE(list.code, 0);
    };
    run.Execute("connect", Names({QStringLiteral("quay")}));
    QCOMPARE(list.Texts("selected"),
             (QStringList{QStringLiteral("false"), QStringLiteral("true"), QStringLiteral("false")}));
    QCOMPARE(save.code, 0);
    QCOMPARE(run.host.saved, 1);
}

void TestDialogCommands::unknownNamesConnectNothing()
{
    Commands run;
    run.Execute("connect", Names({QStringLiteral("mast"), QStringLiteral("mole"), QStringLiteral("weir")}));
    QCOMPARE(run.answer.code, 3);
    QVERIFY(run.answer.error.contains(QStringLiteral("\"mole\", \"weir\"")));
    QVERIFY(run.fake.connected.isEmpty());
}

void TestDialogCommands::entryThatDidNotStartIsReported()
{
    Commands run;
    run.refused = QStringList{QStringLiteral("mast")};
    run.Execute("connect", Names({QStringLiteral("mast"), QStringLiteral("quay")}));
    QCOMPARE(run.answer.code, 3);
    QCOMPARE(run.answer.Texts("type"), QStringList{QStringLiteral("message")});
    QVERIFY(run.answer.Texts("text").at(0).startsWith(QStringLiteral("\"mast\" could not be connected")));
}

void TestDialogCommands::entryInUseIsReported()
{
    Commands run;
    run.fake.SetStatus(0, 1);
    run.Execute("connect", Names({QStringLiteral("mast")}));
    QCOMPARE(run.answer.code, 3);
    QCOMPARE(run.answer.Texts("text"), QStringList{QStringLiteral("\"mast\" is already in use")});
}

void TestDialogCommands::textOfABoxGoesToTheCaller()
{
    Commands run;
    run.refused = QStringList{QStringLiteral("mast")};
    run.meanwhile = [] {
        QMessageBox box(QMessageBox::Information, QStringLiteral("Problem"), QStringLiteral("No\n\nroom."),
                        QMessageBox::Ok);
        box.setObjectName(QLatin1String(ConnectDialog::kProblemBox));
        box.exec();
    };
    run.Execute("connect", Names({QStringLiteral("mast")}));
    QCOMPARE(run.answer.code, 3);
    QCOMPARE(run.answer.Texts("text"),
             (QStringList{QStringLiteral("Problem: No room."), QStringLiteral("\"mast\" could not be connected")}));
}

void TestDialogCommands::waitTellsEachChangeUntilAllAreFree()
{
    Commands run;
    run.fake.SetStatus(1, 1); // another one, which is not waited for
    run.Execute("connect", Names({QStringLiteral("mast"), QStringLiteral("quay")}, true));
    QVERIFY(!run.answer.code);
    run.EndApplication(0, kDone);
    QVERIFY(!run.answer.code);
    run.EndApplication(2, kDone);
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.answer.Texts("name"), (QStringList{QStringLiteral("mast"), QStringLiteral("quay"),
                                                    QStringLiteral("mast"), QStringLiteral("quay")}));
    QCOMPARE(run.answer.Texts("fromText"), (QStringList{QStringLiteral("Free"), QStringLiteral("Free"),
                                                        QStringLiteral("In Use"), QStringLiteral("In Use")}));
    const QJsonObject last = run.answer.lines.constLast();
    QCOMPARE(last.value(QLatin1String("exitCode")).toInt(-1), 0);
    QCOMPARE(last.value(QLatin1String("to")).toInt(-1), 0);
    QVERIFY(QDateTime::fromString(last.value(QLatin1String("time")).toString(), Qt::ISODateWithMs).isValid());
}

void TestDialogCommands::applicationThatFailsCounts_data()
{
    QTest::addColumn<QVariantMap>("end");
    QTest::addColumn<bool>("ignores");
    QTest::addColumn<int>("code");
    QTest::newRow("exit code") << kFailed << false << 3;
    QTest::newRow("crash") << kCrashed << false << 3;
    QTest::newRow("exit code, ignored") << kFailed << true << 0;
    QTest::newRow("crash, ignored") << kCrashed << true << 0;
}

void TestDialogCommands::applicationThatFailsCounts()
{
    QFETCH(const QVariantMap, end);
    QFETCH(const bool, ignores);
    QFETCH(const int, code);
    Commands run;
    run.fake.SetStatus(0, 1);
    run.Execute("wait", {{QStringLiteral("ignoreExitCodes"), ignores}});
    run.EndApplication(0, end);
    QCOMPARE(run.answer.code, code);
    const QJsonObject line = run.answer.lines.constLast();
    QCOMPARE(line.value(QLatin1String("exitCode")).toVariant(), end.value(QStringLiteral("exitCode")));
    QCOMPARE(line.value(QLatin1String("signal")).toVariant(), end.value(QStringLiteral("signal")));
    QCOMPARE(line.value(QLatin1String("crashed")).toBool(), end.contains(QStringLiteral("crashed")));
}

void TestDialogCommands::waitWithoutEntriesInUseEndsAtOnce()
{
    Commands run;
    run.Execute("wait");
    QCOMPARE(run.answer.code, 0);
    QVERIFY(run.answer.lines.isEmpty());
}

void TestDialogCommands::waitTakesInLaterEntries()
{
    Commands run;
    run.fake.SetStatus(0, 1);
    run.Execute("wait");
    run.fake.SetStatus(1, 1);
    run.EndApplication(0, kDone);
    QVERIFY(!run.answer.code);
    // An entry in use that is removed is not waited for.
    run.fake.entries.removeRow(1);
    QCOMPARE(run.answer.code, 0);
}

void TestDialogCommands::callerMayGoAtAnyTime()
{
    Commands run;
    auto gone = std::make_unique<Answer>();
    run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("list")}}, {}}, gone.get());
    gone = std::make_unique<Answer>();
    run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("watch")}}, {}}, gone.get());
    gone = std::make_unique<Answer>();
    // While entries are being connected.
    run.meanwhile = [&gone] {
        gone.reset();
    };
    QJsonObject request = Names({QStringLiteral("mast")}, true);
    request.insert(QStringLiteral("command"), QStringLiteral("connect"));
    run.commands->Execute({request, {}}, gone.get());
    run.EndApplication(0, kDone);
    run.Execute("list");
    QTRY_COMPARE(run.answer.code, 0);
}

void TestDialogCommands::watchTellsChangesOfTheList()
{
    Commands run;
    run.Execute("watch");
    run.fake.SetStatus(0, 1);
    // One line for all of an import.
    for (int i = 0; i < 1000; ++i)
        run.fake.Add(QStringLiteral("mole"));
    run.fake.entries.removeRow(2);
    QTRY_COMPARE(run.answer.Texts("type"), (QStringList{QStringLiteral("status"), QStringLiteral("entries")}));
    QCOMPARE(run.answer.Texts("count"), (QStringList{QString(), QStringLiteral("1002")}));
    QVERIFY(!run.answer.code);
}

void TestDialogCommands::picturesOfTheCourseAreSent()
{
    Commands run;
    QJsonObject request = Names({QStringLiteral("mast")}, true);
    request.insert(QStringLiteral("pictureDuring"), true);
    request.insert(QStringLiteral("picture"), true);
    run.Execute("connect", request);
    run.EndApplication(0, kDone);
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.answer.Texts("moment").filter(QRegularExpression(QStringLiteral("."))),
             (QStringList{QStringLiteral("during"), QStringLiteral("end")}));
}

void TestDialogCommands::changesAreRefusedWhileEntriesAreInUse_data()
{
    QTest::addColumn<QByteArray>("command");
    for (const char* command : {"import", "add", "quit"})
        QTest::newRow(command) << QByteArray(command);
}

void TestDialogCommands::changesAreRefusedWhileEntriesAreInUse()
{
    QFETCH(const QByteArray, command);
    Commands run;
    run.fake.SetStatus(0, 1);
    run.Execute(command.constData());
    QCOMPARE(run.answer.code, 4);
    QCOMPARE(run.answer.error, QStringLiteral("1 entry is in use"));
    QCOMPARE(run.fake.entries.rowCount(), 3);
    QCOMPARE(run.host.quit, 0);
}

void TestDialogCommands::openBoxRefusesChangesAndConnecting_data()
{
    QTest::addColumn<QByteArray>("command");
    for (const char* command : {"import", "add", "quit", "connect"})
        QTest::newRow(command) << QByteArray(command);
}

void TestDialogCommands::openBoxRefusesChangesAndConnecting()
{
    QFETCH(const QByteArray, command);
    Commands run;
    QMessageBox box(QMessageBox::Question, QStringLiteral("Info"), QStringLiteral("?"));
    box.setModal(true);
    box.show();
    QTRY_VERIFY(QApplication::activeModalWidget());
    run.Execute(command.constData(), Names({QStringLiteral("mast")}));
    QCOMPARE(run.answer.code, 4);
    QVERIFY2(run.answer.error.contains(QStringLiteral("box is open")), qPrintable(run.answer.error));
    QVERIFY(run.fake.connected.isEmpty());
}

void TestDialogCommands::usersConnectRefusesChangesAndConnecting_data()
{
    openBoxRefusesChangesAndConnecting_data();
}

void TestDialogCommands::usersConnectRefusesChangesAndConnecting()
{
    QFETCH(const QByteArray, command);
    Commands run;
    run.dialog->Window()->setProperty("isConnecting", true);
    run.Execute(command.constData(), Names({QStringLiteral("mast")}));
    QCOMPARE(run.answer.code, 4);
    QCOMPARE(run.answer.error, QStringLiteral("entries are being connected"));
    QVERIFY(run.fake.connected.isEmpty());
}

void TestDialogCommands::importRefusesSave()
{
    Commands run;
    {
        const QProgressDialog box(run.dialog->Window());
        run.Execute("save");
        QCOMPARE(run.answer.code, 4);
        QCOMPARE(run.host.saved, 0);
    }
    run.answer.code.reset();
    run.Execute("save");
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.host.saved, 1);
}

void TestDialogCommands::documentWithoutEntriesIsNotImported()
{
    Commands run;
    run.document = "<ConnectionEntries/>";
    for (const char* command : {"import", "add"}) {
        run.answer.code.reset();
        run.Execute(command);
        QTRY_COMPARE(run.answer.code, 2);
        QCOMPARE(run.fake.entries.rowCount(), 3);
    }
}

// The document is read in another thread.
void TestDialogCommands::entryThatIsInUseMeanwhileStopsTheImport()
{
    Commands run;
    run.document = "<ConnectionEntries><Connection/></ConnectionEntries>";
    run.Execute("import");
    QVERIFY(!run.answer.code);
    run.fake.SetStatus(0, 1);
    QTRY_COMPARE(run.answer.code, 4);
    QCOMPARE(run.fake.entries.rowCount(), 3);
}

void TestDialogCommands::callersThatHaveGoneAreNotServed()
{
    Commands run;
    for (int i = 0; i < 1000; ++i) {
        Answer gone;
        run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("list")}}, {}}, &gone);
    }
    // In its turn.
    run.Execute("list");
    run.fake.Add(QStringLiteral("mole"));
    QTRY_COMPARE(run.answer.code, 0);
    QCOMPARE(run.answer.lines.size(), 4);
}

void TestDialogCommands::listIsClearedOnRequest()
{
    Commands run;
    run.Execute("import", {{QStringLiteral("clear"), true}});
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.fake.entries.rowCount(), 0);
    QCOMPARE(run.host.saved, 1);
    QCOMPARE(run.answer.Texts("before"), QStringList{QStringLiteral("3")});
}

void TestDialogCommands::saveReportsFailure()
{
    Commands run;
    run.host.saveError = QStringLiteral("the disk is full");
    run.Execute("save");
    QCOMPARE(run.answer.code, 2);
    QCOMPARE(run.answer.error, QStringLiteral("the disk is full"));
}

void TestDialogCommands::showShowsTheDialog()
{
    Commands run;
    run.Execute("show");
    QCOMPARE(run.answer.code, 0);
    QCOMPARE(run.host.shown, 1);
}

void TestDialogCommands::quitSavesAndEndsOnceTheAnswerIsRead()
{
    Commands run;
    auto answer = std::make_unique<Answer>();
    run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("quit")}}, {}}, answer.get());
    QCOMPARE(answer->code, 0);
    QCOMPARE(run.host.saved, 1);
    QCOMPARE(run.host.quit, 0);
    answer.reset();
    QVERIFY(run.host.quit > 0);
}

void TestDialogCommands::quitThatCannotSaveNeedsForce()
{
    Commands run;
    run.host.saveError = QStringLiteral("the disk is full");
    run.Execute("quit");
    QCOMPARE(run.answer.code, 2);
    run.fake.SetStatus(0, 1);
    Answer forced;
    run.commands->Execute({{{QStringLiteral("command"), QStringLiteral("quit")}, {QStringLiteral("force"), true}}, {}},
                          &forced);
    QCOMPARE(forced.code, 0);
    QTRY_VERIFY(run.host.quit > 0);
}

VEXEL_TEST(QTEST_MAIN, TestDialogCommands)
#include "tst_dialogcommands.moc"
