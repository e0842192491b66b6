// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/options/sessionoptions.h"
#include "host/options/settings.h"
#include "platform/errorhandler.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Key = Settings::Key;

class TestSettings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void nothingIsSetWithoutFiles();
    void everyKeyIsRead();
    void usersFileComesFirst();
    void damagedFileLeavesTheOthers_data();
    void damagedFileLeavesTheOthers();
    void unreadableFileLeavesTheOthers();
    void unusableValueLeavesTheOthers_data();
    void unusableValueLeavesTheOthers();
    void unknownKeysAreReported();
    void homeFolderIsExpanded();
    void commandLineWins();
    void settingsFillGaps();
    void problemsAreTraced();
    void defaultFilesAreTheUsersAndTheMachines();

private:
    QString User() const { return m_folder->filePath(QStringLiteral("user.ini")); }
    QString Machine() const { return m_folder->filePath(QStringLiteral("machine.ini")); }
    Settings Read() const { return Settings({User(), Machine()}); }
    /// An absolute path on every system.
    static QString Absolute(const QString& path) { return QDir(path).absolutePath(); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestSettings::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void TestSettings::nothingIsSetWithoutFiles()
{
    const Settings settings = Read();
    for (const Key key : {Key::Data, Key::Language, Key::Trace, Key::TraceFile})
        QCOMPARE(settings.Get(key).text + settings.Get(key).file, QString());
    QCOMPARE(settings.Problems(), QStringList());
    QCOMPARE(settings.Files().size(), 2);
    QCOMPARE(settings.Files().at(0).path, User());
    QCOMPARE(settings.Files().at(0).state, QStringLiteral("does not exist"));
}

void TestSettings::everyKeyIsRead()
{
    const QString data = Absolute(QStringLiteral("/srv/sites, north"));
    QVERIFY(Files::Write(Machine(), "; for everybody\ndata=\"" + data.toUtf8() +
                                        "\"\n[General]\nlanguage=de_AT\ntrace=true\ntrace-file=\"" +
                                        Absolute(QStringLiteral("/t/Spur-\u00e4")).toUtf8() + "\"\n"));
    const Settings settings = Read();
    QCOMPARE(settings.Problems(), QStringList());
    QCOMPARE(settings.Files().at(1).state, QStringLiteral("read"));
    QCOMPARE(settings.Get(Key::Data).text, data);
    QCOMPARE(settings.Get(Key::Data).file, Machine());
    QCOMPARE(settings.Get(Key::Language).text, QStringLiteral("de_AT"));
    QCOMPARE(settings.Get(Key::Trace).text, QStringLiteral("true"));
    QCOMPARE(settings.Get(Key::TraceFile).text, Absolute(QStringLiteral("/t/Spur-\u00e4")));
}

void TestSettings::usersFileComesFirst()
{
    QVERIFY(Files::Write(User(), "language=de\n"));
    QVERIFY(Files::Write(Machine(), "language=fr\ntrace=true\n"));
    const Settings settings = Read();
    QCOMPARE(settings.Get(Key::Language).text, QStringLiteral("de"));
    QCOMPARE(settings.Get(Key::Language).file, User());
    QCOMPARE(settings.Get(Key::Trace).file, Machine());
}

void TestSettings::damagedFileLeavesTheOthers_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("garbage") << QByteArray("\0\1\2 garbage", 11);
    QTest::newRow("nothing but nulls") << QByteArray(100, '\0');
    QTest::newRow("not UTF-8") << QByteArray("language=de\ndata=/srv/\xe4\n");
    QTest::newRow("half of it") << QByteArray("language=fr\ntrac");
}

void TestSettings::damagedFileLeavesTheOthers()
{
    QFETCH(const QByteArray, content);
    QVERIFY(Files::Write(User(), "trace=true\n"));
    QVERIFY(Files::Write(Machine(), content));
    Settings settings = Read();
    QCOMPARE(settings.Get(Key::Trace).text, QStringLiteral("true"));
    QCOMPARE(settings.Get(Key::Language).text, QString());
    QCOMPARE(settings.Problems().size(), 1);
    QVERIFY2(settings.Problems().at(0).startsWith(Machine() + QStringLiteral(": ignored: damaged")),
             qPrintable(settings.Problems().at(0)));
    QVERIFY(settings.Files().at(1).state.startsWith(QLatin1String("IGNORED: damaged")));

    // Likewise the other way round.
    QVERIFY(Files::Write(User(), content));
    QVERIFY(Files::Write(Machine(), "language=de\n"));
    settings = Read();
    QCOMPARE(settings.Get(Key::Language).text, QStringLiteral("de"));
    QCOMPARE(settings.Problems().size(), 1);
}

void TestSettings::unreadableFileLeavesTheOthers()
{
    QVERIFY(Files::Write(Machine(), "language=de\n"));
    QVERIFY(QDir().mkdir(User()));
    Settings settings = Read();
    QCOMPARE(settings.Problems().size(), 1);
    QVERIFY2(settings.Problems().at(0).startsWith(User() + QStringLiteral(": ignored: cannot be read: ")),
             qPrintable(settings.Problems().at(0)));
    QCOMPARE(settings.Get(Key::Language).text, QStringLiteral("de"));

    QVERIFY(QDir().rmdir(User()));
    QVERIFY(Files::Write(User(), "language=fr\n"));
    if (!QFile::setPermissions(User(), {}) || QFile(User()).open(QIODevice::ReadOnly))
        QSKIP("No file can be kept from this user here.");
    settings = Read();
    QCOMPARE(settings.Get(Key::Language).text, QStringLiteral("de"));
    QCOMPARE(settings.Problems().size(), 1);
    QVERIFY2(settings.Problems().at(0).startsWith(User() + QStringLiteral(": ignored: cannot be read: ")),
             qPrintable(settings.Problems().at(0)));
}

void TestSettings::unusableValueLeavesTheOthers_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("key");
    QTest::newRow("relative") << QByteArray("data=here/and/there") << static_cast<int>(Key::Data);
    QTest::newRow("backslashes") << QByteArray("data=C:\\Vexel\\data") << static_cast<int>(Key::Data);
    QTest::newRow("backslashes in the other path")
        << QByteArray("trace-file = C:\\vexel.log") << static_cast<int>(Key::TraceFile);
    QTest::newRow("empty path") << QByteArray("trace-file=") << static_cast<int>(Key::TraceFile);
    QTest::newRow("comma without quotation marks") << QByteArray("data=/srv/a,b") << static_cast<int>(Key::Data);
    QTest::newRow("locale") << QByteArray("language=klingonisch") << static_cast<int>(Key::Language);
    QTest::newRow("flag") << QByteArray("trace=perhaps") << static_cast<int>(Key::Trace);
}

void TestSettings::unusableValueLeavesTheOthers()
{
    QFETCH(const QByteArray, line);
    QFETCH(const int, key);
    const QString path = Absolute(QStringLiteral("/srv/vexel"));
    QVERIFY(Files::Write(User(), line + '\n'));
    QVERIFY(Files::Write(Machine(),
                         "data=" + path.toUtf8() + "\ntrace-file=" + path.toUtf8() + "\nlanguage=de\ntrace=false\n"));
    const Settings settings = Read();
    QCOMPARE(settings.Get(static_cast<Key>(key)).file, Machine());
    QCOMPARE(settings.Problems().size(), 1);
    QVERIFY2(settings.Problems().at(0).startsWith(User() + QStringLiteral(": ") +
                                                  Settings::Name(static_cast<Key>(key)) + QStringLiteral(": ")),
             qPrintable(settings.Problems().at(0)));
}

void TestSettings::unknownKeysAreReported()
{
    QVERIFY(Files::Write(Machine(), "langauge=de\n[Other]\ntrace=true\n"));
    const Settings settings = Read();
    QCOMPARE(settings.Problems(), QStringList({Machine() + QStringLiteral(": unknown key: Other/trace"),
                                               Machine() + QStringLiteral(": unknown key: langauge")}));
    QCOMPARE(settings.Get(Key::Trace).text, QString());
}

void TestSettings::homeFolderIsExpanded()
{
    QVERIFY(Files::Write(Machine(), "trace-file=~/vexel.log\n"));
    QCOMPARE(Read().Get(Key::TraceFile).text, QDir::home().absoluteFilePath(QStringLiteral("vexel.log")));
}

void TestSettings::commandLineWins()
{
    QVERIFY(Files::Write(User(), "language=de\ntrace=true\ntrace-file=~/vexel.log\n"));
    SessionOptions options;
    options.language = QLocale(QStringLiteral("fr"));
    options.traceFile = QStringLiteral("/given");
    ApplySettings(options, Read());
    ApplyTraceSettings(options, Read());
    QCOMPARE(options.language->language(), QLocale::French);
    QCOMPARE(options.traceFile, QStringLiteral("/given"));
    QVERIFY(!options.trace);
}

void TestSettings::settingsFillGaps()
{
    const QString data = Absolute(QStringLiteral("/srv/vexel"));
    QVERIFY(Files::Write(User(), "language=de\ntrace=true\ntrace-file=~/vexel.log\ndata=" + data.toUtf8() + "\n"));
    SessionOptions options;
    ApplySettings(options, Read());
    // Those of a command come from its command line alone.
    QVERIFY(!options.trace);
    ApplyTraceSettings(options, Read());
    QVERIFY(options.language.has_value());
    QCOMPARE(options.language.value_or(QLocale::c()).language(), QLocale::German);
    QVERIFY(options.trace);
    QVERIFY(options.traceFile.endsWith(QLatin1String("/vexel.log")));
    // Not to be stored in the configuration.
    QCOMPARE(options.dataDirectory, QString());
    QCOMPARE(options.defaultDataDirectory, data);
}

void TestSettings::problemsAreTraced()
{
    QVERIFY(Files::Write(User(), "langauge=de\n"));
    QStringList traces;
    ErrorHandler& handler = ErrorHandler::Instance();
    const unsigned kinds = handler.EnabledKinds();
    handler.SetEnabledKinds(ErrorHandler::Trace);
    handler.SetSink(
        [&traces](ErrorHandler::Kind, const QString& message, const QString&, quint16) { traces.append(message); });
    const auto restore = qScopeGuard([&] {
        handler.SetEnabledKinds(kinds);
        handler.SetSink({});
    });
    const Settings settings = Read();
    settings.TraceProblems();
    QCOMPARE(settings.Problems().size(), 1);
    QCOMPARE(traces, settings.Problems());
}

void TestSettings::defaultFilesAreTheUsersAndTheMachines()
{
#ifdef Q_OS_WIN
    const QStringList files = Settings::DefaultFiles();
    QVERIFY(files.size() >= 2);
    QVERIFY2(files.at(0).endsWith(QLatin1String("/AppData/Local/Vexel/vexelhost.ini")), qPrintable(files.at(0)));
    QCOMPARE(files.at(1),
             QDir::fromNativeSeparators(qEnvironmentVariable("ProgramData")) + QStringLiteral("/Vexel/vexelhost.ini"));
#else
    const QByteArray home = qgetenv("XDG_CONFIG_HOME");
    const QByteArray system = qgetenv("XDG_CONFIG_DIRS");
    const auto restore = qScopeGuard([&] {
        qputenv("XDG_CONFIG_HOME", home);
        qputenv("XDG_CONFIG_DIRS", system);
    });
    qputenv("XDG_CONFIG_HOME", "/home/me/config");
    qputenv("XDG_CONFIG_DIRS", "/etc/one:/etc/two");
    QCOMPARE(Settings::DefaultFiles(), QStringList({QStringLiteral("/home/me/config/Vexel/vexelhost.ini"),
                                                    QStringLiteral("/etc/one/Vexel/vexelhost.ini"),
                                                    QStringLiteral("/etc/two/Vexel/vexelhost.ini")}));
    qunsetenv("XDG_CONFIG_DIRS");
    QCOMPARE(Settings::DefaultFiles().at(1), QStringLiteral("/etc/xdg/Vexel/vexelhost.ini"));
    // Without a folder of the user's, those of the machine.
    qputenv("XDG_CONFIG_HOME", "relative");
    QCOMPARE(Settings::DefaultFiles(), QStringList{QStringLiteral("/etc/xdg/Vexel/vexelhost.ini")});
#endif
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestSettings)
#include "tst_settings.moc"
