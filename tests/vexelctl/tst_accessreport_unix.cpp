// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/system/otherusers_unix.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"
#include "vexelctl/support/accessreport.h"
#include "vexelctl/support/supportreport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uid_t kOtherUser = 12345;
const QString kWritten = QStringLiteral("OTHERS CAN WRITE the configuration, which decides what programs are started");
const QString kReplaced = QStringLiteral(
    "OTHERS CAN REPLACE \"%1\" in it, and so the configuration, which decides what programs are started");
constexpr gid_t kOtherGroup = 65534;
const QString kClosed = QStringLiteral("others could read it, but a folder above keeps them out");

/// A mode that lets the group in is about another group than the user's own, if this user may set one.
void SetMode(const QString& name, mode_t mode)
{
    if ((mode & S_IRWXG) != 0 &&
        ::chown(QFile::encodeName(name).constData(), static_cast<uid_t>(-1), kOtherGroup) != 0 &&
        IsGroupOfUser(::getegid(), ::geteuid()))
        QSKIP("This user cannot give a file to another group.");
    QCOMPARE(::chmod(QFile::encodeName(name).constData(), mode), 0);
}

QString Row(const QString& file, mode_t mode, const QString& access)
{
    return file + u' ' + QString::number(mode, 8).rightJustified(4, u'0') + u' ' + access;
}

/// Returns false if this user cannot do it.
bool GiveAway(const QString& name)
{
    return ::chown(QFile::encodeName(name).constData(), kOtherUser, kOtherUser) == 0;
}

/// Whether other users can enter `folder`.
bool IsOpen(const QString& folder)
{
    for (QDir above(QFileInfo(folder).canonicalFilePath());; above.cdUp()) {
        struct stat status = {};
        if (::stat(QFile::encodeName(above.path()).constData(), &status) != 0 || (status.st_mode & 0011) == 0)
            return false;
        if (above.isRoot())
            return true;
    }
}

} // namespace

/// The report on what other users can access, for files with certain modes and owners.
class TestAccessReportUnix : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!IsOpen(QDir::tempPath()))
            QSKIP("other users cannot reach the folder for temporary files");
    }
    void init();

    void privateFilesAreNotListed();
    void wideModeIsListed_data();
    void wideModeIsListed();
    void groupOfTheUserIsNobodyElse();
    void writableFilesAreListedFirst();
    void closedFolderAboveIsConsidered();
    void replaceableFolderIsListed_data();
    void replaceableFolderIsListed();
    void replaceableLinkIsListed();
    void traceFilesAreListed();
    void fileOfAnotherUserIsListed();
    void configurationOfAnotherUserIsPrivateForRoot();
    void missingConfigurationHasNoRows();

private:
    QString Path(const char* name) const { return m_directory->filePath(QString::fromLatin1(name)); }
    /// Rows "path mode access" on what is in the temporary directory, with paths relative to it.
    QStringList Rows(const QString& directory, const QString& traceFile = {}) const;
    QStringList Rows() const { return Rows(Path("outer/config")); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TestAccessReportUnix::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    SetMode(m_directory->path(), 0755);
    QVERIFY(QDir().mkpath(Path("outer/config/application")));
    SetMode(Path("outer"), 0755);
    SetMode(Path("outer/config"), 0700);
    SetMode(Path("outer/config/application"), 0700);
    QVERIFY(Files::Write(Path("outer/config/application/a.json"), "{}"));
    SetMode(Path("outer/config/application/a.json"), 0600);
}

QStringList TestAccessReportUnix::Rows(const QString& directory, const QString& traceFile) const
{
    SupportReport report;
    report.BeginSection(QStringLiteral("One"));
    ReportAccess(report, directory, traceFile);
    const QJsonArray table = QJsonDocument::fromJson(report.Json())[QLatin1String("one")]
                                 .toObject()
                                 .value(QLatin1String("accessByOthers"))
                                 .toArray();
    QStringList rows;
    for (const auto& row : table) {
        const QString relative =
            QDir(m_directory->path()).relativeFilePath(row.toObject().value(QLatin1String("file")).toString());
        if (!relative.startsWith(QLatin1String("..")))
            rows.append(relative + u' ' + row.toObject().value(QLatin1String("mode")).toString() + u' ' +
                        row.toObject().value(QLatin1String("access")).toString());
    }
    return rows;
}

void TestAccessReportUnix::privateFilesAreNotListed()
{
    QCOMPARE(Rows(), QStringList());
}

void TestAccessReportUnix::wideModeIsListed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<mode_t>("mode");
    QTest::addColumn<QString>("access");
    const QString read = QStringLiteral("others can read it");
    QTest::newRow("folder, others read") << "outer/config" << mode_t(0755) << read;
    QTest::newRow("folder, its group reads") << "outer/config" << mode_t(0750) << read;
    QTest::newRow("folder, its group writes") << "outer/config" << mode_t(0770) << kWritten;
    QTest::newRow("folder, others write") << "outer/config" << mode_t(01777) << kWritten;
    for (const char* file :
         {"outer/config/application/a.json", "outer/config/application/a.json.damaged-20260304T101112345",
          "outer/config/application/a.json.versions/00000001-20260304T101112.345Z.json", "outer/config/vexelhost.lock",
          "outer/config/.hidden"}) {
        QTest::newRow((QByteArray(file) + ", others read").constData()) << file << mode_t(0604) << read;
        QTest::newRow((QByteArray(file) + ", its group writes").constData()) << file << mode_t(0660) << kWritten;
    }
}

void TestAccessReportUnix::wideModeIsListed()
{
    QFETCH(const QString, file);
    QFETCH(const mode_t, mode);
    QFETCH(const QString, access);
    const QString path = m_directory->filePath(file);
    if (!QFileInfo(path).isDir()) {
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(Files::Write(path, "{}"));
        // Others must be able to enter the folders above.
        for (QString above = QFileInfo(path).path(); above != Path("outer"); above = QFileInfo(above).path())
            SetMode(above, 0711);
    }
    SetMode(path, mode);
    QStringList rows = Rows();
    rows.removeIf([](const QString& one) { return one.contains(QLatin1String(" 0711 ")); });
    QCOMPARE(rows, QStringList(Row(file, mode, access)));
}

void TestAccessReportUnix::groupOfTheUserIsNobodyElse()
{
    if (!IsGroupOfUser(::getegid(), ::geteuid()))
        QSKIP("This user has no group of the same name.");
    QCOMPARE(::chmod(QFile::encodeName(Path("outer/config")).constData(), 0770), 0);
    QCOMPARE(Rows(), QStringList());
}

void TestAccessReportUnix::writableFilesAreListedFirst()
{
    SetMode(Path("outer/config"), 0755);
    SetMode(Path("outer/config/application"), 0755);
    SetMode(Path("outer/config/application/a.json"), 0666);
    QCOMPARE(Rows(), QStringList({QStringLiteral("outer/config/application/a.json 0666 ") + kWritten,
                                  QStringLiteral("outer/config 0755 others can read it"),
                                  QStringLiteral("outer/config/application 0755 others can read it")}));
}

void TestAccessReportUnix::closedFolderAboveIsConsidered()
{
    SetMode(Path("outer/config/application/a.json"), 0644);
    QCOMPARE(Rows(), QStringList(QStringLiteral("outer/config/application/a.json 0644 ") + kClosed));
    // Nobody can get to the folder that is writable.
    SetMode(m_directory->path(), 0700);
    SetMode(Path("outer"), 0777);
    QCOMPARE(Rows(), QStringList(QStringLiteral("outer/config/application/a.json 0644 ") + kClosed));
}

void TestAccessReportUnix::replaceableFolderIsListed_data()
{
    QTest::addColumn<mode_t>("mode");
    QTest::addColumn<bool>("isReplaceable");
    QTest::newRow("private") << mode_t(0700) << false;
    QTest::newRow("readable") << mode_t(0755) << false;
    QTest::newRow("group-writable") << mode_t(0775) << true;
    QTest::newRow("world-writable") << mode_t(0777) << true;
    QTest::newRow("sticky") << mode_t(01777) << false;
}

void TestAccessReportUnix::replaceableFolderIsListed()
{
    QFETCH(const mode_t, mode);
    QFETCH(const bool, isReplaceable);
    SetMode(Path("outer"), mode);
    const QStringList expected =
        isReplaceable ? QStringList(Row(QStringLiteral("outer"), mode, kReplaced.arg(QStringLiteral("config"))))
                      : QStringList();
    QCOMPARE(Rows(), expected);
    // Also a folder further above.
    QCOMPARE(Rows(Path("outer/config/application")), expected);
}

void TestAccessReportUnix::replaceableLinkIsListed()
{
    QVERIFY(QDir().mkpath(Path("open")));
    QVERIFY(QFile::link(Path("outer/config"), Path("open/link")));
    SetMode(Path("open"), 01777);
    QCOMPARE(Rows(Path("open/link")), QStringList());
    SetMode(Path("open"), 0777);
    QCOMPARE(Rows(Path("open/link")),
             QStringList(QStringLiteral("open 0777 ") + kReplaced.arg(QStringLiteral("link"))));
    // And the folder that it leads to.
    SetMode(Path("open"), 0755);
    SetMode(Path("outer"), 0777);
    QCOMPARE(Rows(Path("open/link")),
             QStringList(QStringLiteral("outer 0777 ") + kReplaced.arg(QStringLiteral("config"))));
}

void TestAccessReportUnix::traceFilesAreListed()
{
    for (const auto& [name, mode] : {std::pair{"trace.log", 0600U}, std::pair{"trace.log.1", 0644U},
                                     std::pair{"trace.log.5", 0666U}, std::pair{"trace.log.6", 0666U}}) {
        QVERIFY(Files::Write(Path(name), "line\n"));
        SetMode(Path(name), mode);
    }
    QCOMPARE(Rows(Path("outer/config"), Path("trace.log")),
             QStringList({QStringLiteral("trace.log.5 0666 others can write it"),
                          QStringLiteral("trace.log.1 0644 others can read it")}));
    QCOMPARE(Rows(Path("outer/config"), QStringLiteral("/dev/null")), QStringList());
}

void TestAccessReportUnix::fileOfAnotherUserIsListed()
{
    SetMode(Path("outer/config"), 0711);
    if (!GiveAway(Path("outer/config/application")))
        QSKIP("only root can give a folder away");
    QCOMPARE(Rows().constFirst(), QStringLiteral("outer/config/application 0700 ") + kWritten +
                                      QStringLiteral(" (it belongs to user 12345)"));
}

void TestAccessReportUnix::configurationOfAnotherUserIsPrivateForRoot()
{
    for (const char* name : {"outer", "outer/config", "outer/config/application", "outer/config/application/a.json"})
        if (!GiveAway(Path(name)))
            QSKIP("only root can give a folder away");
    QCOMPARE(Rows(), QStringList());
    // The folder above belongs to a third one.
    QCOMPARE(::chown(QFile::encodeName(Path("outer")).constData(), kOtherUser + 1, kOtherUser + 1), 0);
    QCOMPARE(Rows(), QStringList(QStringLiteral("outer 0755 ") + kReplaced.arg(QStringLiteral("config")) +
                                 QStringLiteral(" (it belongs to user 12346)")));
}

void TestAccessReportUnix::missingConfigurationHasNoRows()
{
    SetMode(Path("outer"), 0777);
    QCOMPARE(Rows(Path("outer/missing")), QStringList());
    QCOMPARE(Rows(QString()), QStringList());
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestAccessReportUnix)
#include "tst_accessreport_unix.moc"
