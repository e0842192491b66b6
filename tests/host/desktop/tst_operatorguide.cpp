// SPDX-FileCopyrightText: 2026 Vexel
// SPDX-License-Identifier: LicenseRef-Vexel

#include "host/desktop/operatorguide.h"
#include "tests/support/files.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

class TestOperatorGuide : public QObject
{
    Q_OBJECT

private slots:
    void noGuideIsInstalled();
    void languageOfTheTextsDecides();
};

namespace {

/// An installed tree.
struct Tree
{
    Tree() { QDir().mkpath(Guide()); }
    QString Programs() const { return folder.filePath(QStringLiteral("bin")); }
    QString Guide() const { return folder.filePath(QStringLiteral("share/vexel/guide")); }
    QString Add(const char* name) const
    {
        const QString file = QDir(Guide()).filePath(QLatin1String(name));
        return Files::Write(file, "<html/>") ? file : QString();
    }

    QTemporaryDir folder;
};

/// Translates the name of the file.
class German : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return QLatin1String(context) == QLatin1String("OperatorGuide") &&
                       QLatin1String(source) == QLatin1String("guide_en.html")
                   ? QStringLiteral("guide_de.html")
                   : QString();
    }
};

} // namespace

void TestOperatorGuide::noGuideIsInstalled()
{
    const Tree tree;
    QCOMPARE(OperatorGuide::File(tree.Programs()), QString());
    QCOMPARE(OperatorGuide::File(QStringLiteral("/no/such/place/bin")), QString());
}

void TestOperatorGuide::languageOfTheTextsDecides()
{
    const Tree tree;
    const QString english = tree.Add("guide_en.html");
    QVERIFY(!english.isEmpty());
    QCOMPARE(OperatorGuide::File(tree.Programs()), english);
    German german;
    QCoreApplication::installTranslator(&german);
    const auto remove = qScopeGuard([&german] { QCoreApplication::removeTranslator(&german); });
    // One without the German guide.
    QCOMPARE(OperatorGuide::File(tree.Programs()), english);
    const QString guide = tree.Add("guide_de.html");
    QCOMPARE(OperatorGuide::File(tree.Programs()), guide);
}

VEXEL_TEST(QTEST_GUILESS_MAIN, TestOperatorGuide)
#include "tst_operatorguide.moc"
