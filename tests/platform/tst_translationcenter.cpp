// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "platform/translationcenter.h"
#include "tests/support/testmain.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kDomain = QStringLiteral("PlatformTest");

QString Shown()
{
    return QCoreApplication::translate("PlatformTest", "Street");
}

} // namespace

class TestTranslationCenter : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        TranslationCenter::Instance().SetDirectory(QStringLiteral(TRANSLATIONS));
        TranslationCenter::Instance().SetLocale(QLocale(QLocale::German, QLocale::Germany));
    }
    void cleanup() { QCOMPARE(Shown(), QStringLiteral("Street")); } // every case unregisters its domains

    void instanceIsASingleton() { QCOMPARE(&TranslationCenter::Instance(), &TranslationCenter::Instance()); }

    void textsAreTranslatedWhileRegistered_data()
    {
        QTest::addColumn<QLocale>("locale");
        QTest::addColumn<QString>("shown");
        QTest::newRow("de") << QLocale(QStringLiteral("de")) << QStringLiteral("Stra\u00dfe");
        QTest::newRow("de_DE") << QLocale(QStringLiteral("de_DE")) << QStringLiteral("Stra\u00dfe");
        QTest::newRow("de_AT falls back on de") << QLocale(QStringLiteral("de_AT")) << QStringLiteral("Stra\u00dfe");
        QTest::newRow("de_CH has its own")
            << QLocale(QStringLiteral("de_CH")) << QStringLiteral("Stra\u00dfe (Schweiz)");
        QTest::newRow("en is the source") << QLocale(QStringLiteral("en_US")) << QStringLiteral("Street");
        QTest::newRow("C") << QLocale::c() << QStringLiteral("Street");
        QTest::newRow("no file for fr") << QLocale(QStringLiteral("fr_FR")) << QStringLiteral("Street");
    }
    void textsAreTranslatedWhileRegistered()
    {
        QFETCH(QLocale, locale);
        QFETCH(QString, shown);
        TranslationCenter::Instance().SetLocale(locale);
        TranslationCenter::Instance().Register(kDomain);
        QCOMPARE(Shown(), shown);
        TranslationCenter::Instance().Unregister(kDomain);
        QCOMPARE(Shown(), QStringLiteral("Street"));
    }

    void unregisterHasToBalanceRegister()
    {
        TranslationCenter::Instance().Register(kDomain);
        TranslationCenter::Instance().Register(kDomain);
        TranslationCenter::Instance().Unregister(kDomain);
        QCOMPARE(Shown(), QStringLiteral("Stra\u00dfe"));
        TranslationCenter::Instance().Unregister(kDomain);
        QCOMPARE(Shown(), QStringLiteral("Street"));
    }

    void canBeRegisteredAgain()
    {
        for (int i = 0; i < 2; ++i) {
            TranslationCenter::Instance().Register(kDomain);
            QCOMPARE(Shown(), QStringLiteral("Stra\u00dfe"));
            TranslationCenter::Instance().Unregister(kDomain);
            QCOMPARE(Shown(), QStringLiteral("Street"));
        }
    }

    void unknownDomainsDoNothing()
    {
        TranslationCenter::Instance().Unregister(QStringLiteral("Unknown"));
        TranslationCenter::Instance().Register(kDomain);
        TranslationCenter::Instance().Unregister(QStringLiteral("Unknown"));
        TranslationCenter::Instance().Unregister(QString());
        QCOMPARE(Shown(), QStringLiteral("Stra\u00dfe"));
        TranslationCenter::Instance().Unregister(kDomain);
        // Unregistering once too often does not affect the next registration.
        TranslationCenter::Instance().Unregister(kDomain);
        TranslationCenter::Instance().Register(kDomain);
        QCOMPARE(Shown(), QStringLiteral("Stra\u00dfe"));
        TranslationCenter::Instance().Unregister(kDomain);
    }

    void missingCatalogueShowsSourceTexts_data()
    {
        QTest::addColumn<QString>("directory");
        QTest::addColumn<QString>("domain");
        QTest::newRow("no such domain") << QStringLiteral(TRANSLATIONS) << QStringLiteral("NoSuchDomain");
        QTest::newRow("empty domain") << QStringLiteral(TRANSLATIONS) << QString();
        QTest::newRow("no such folder") << QStringLiteral(TRANSLATIONS "/nowhere") << kDomain;
    }
    void missingCatalogueShowsSourceTexts()
    {
        QFETCH(QString, directory);
        QFETCH(QString, domain);
        TranslationCenter::Instance().SetDirectory(directory);
        TranslationCenter::Instance().Register(domain);
        QCOMPARE(Shown(), QStringLiteral("Street"));
        TranslationCenter::Instance().Unregister(domain);
    }

    void textsOfQtComeFromItsOwnFolder()
    {
        const auto cancel = [] {
            return QCoreApplication::translate("QPlatformTheme", "Cancel");
        };
        if (!QFileInfo::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + QStringLiteral("/qtbase_de.qm")))
            QSKIP("Qt's translations are not installed.");
        TranslationCenter::Instance().Register(QStringLiteral("qtbase"));
        QCOMPARE(cancel(), QStringLiteral("Abbrechen"));
        TranslationCenter::Instance().Unregister(QStringLiteral("qtbase"));
        QCOMPARE(cancel(), QStringLiteral("Cancel"));
    }

    void productsFolderComesBeforeThatOfQt()
    {
        const QTemporaryDir directory;
        QVERIFY(QFile::copy(QStringLiteral(TRANSLATIONS "/PlatformTest_de.qm"),
                            directory.filePath(QStringLiteral("qtbase_de.qm"))));
        TranslationCenter::Instance().SetDirectory(directory.path());
        TranslationCenter::Instance().Register(QStringLiteral("qtbase"));
        QCOMPARE(Shown(), QStringLiteral("Stra\u00dfe"));
        TranslationCenter::Instance().Unregister(QStringLiteral("qtbase"));
    }

    void defaultIsTheSystemLanguageFromTheInstalledFolder_data()
    {
#ifdef Q_OS_WIN
        QSKIP("The system's language does not come from the environment here.");
#endif
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("shown");
        QTest::newRow("German") << QStringLiteral("de_AT") << QStringLiteral("Stra\u00dfe");
        QTest::newRow("French before German") << QStringLiteral("fr:de") << QStringLiteral("Stra\u00dfe");
        QTest::newRow("English before German") << QStringLiteral("en_US:de") << QStringLiteral("Street");
    }
    void defaultIsTheSystemLanguageFromTheInstalledFolder()
    {
        QFETCH(QString, language);
        QFETCH(QString, shown);
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("LC_ALL"));
        environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
        environment.insert(QStringLiteral("LC_MESSAGES"), QStringLiteral("de_DE.UTF-8"));
        environment.insert(QStringLiteral("LANGUAGE"), language);
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(PLATFORMPROCESS), {QStringLiteral("translate")});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()).trimmed(), shown);
    }
};

namespace {

int g_complaints = 0;

void CountComplaints(QtMsgType, const QMessageLogContext&, const QString&)
{
    ++g_complaints;
}

// Not QTEST_MAIN: the centre exists before and after the application object.
int Main(int argc, char** argv)
{
    const QtMessageHandler handler = qInstallMessageHandler(CountComplaints);
    TranslationCenter::Instance().Register(kDomain);
    TranslationCenter::Instance().Unregister(kDomain);
    qInstallMessageHandler(handler);

    int result = 0;
    {
        const QCoreApplication application(argc, argv);
        TestTranslationCenter test;
        result = QTest::qExec(&test, argc, argv);
        TranslationCenter::Instance().Register(kDomain);
        TranslationCenter::Instance().Register(QStringLiteral("StaysRegistered"));
    }

    qInstallMessageHandler(CountComplaints);
    TranslationCenter::Instance().Unregister(kDomain);
    qInstallMessageHandler(handler);
    if (g_complaints > 0)
        qCritical("Qt complained %d times about what was done without an application.", g_complaints);
    return result + g_complaints;
}

const TestMain::Test kTest(__FILE__, Main);

} // namespace
#include "tst_translationcenter.moc"
