// Every system call fails with which the settings are read and written: the file is the old one or the new one, and
// nothing that was stored is lost.
// SPDX-License-Identifier: MIT
#include "FaultRun.h"
#include "TempSettings.h"

#include "widgets/Settings.h"

#include <QFile>
#include <QFileInfo>

using faultRun::failEach;
using faultRun::tFault;

namespace
{

const QStringList files = { "/home/a.eds", "/home/b.eds" };
const QStringList interfaces = { "can0", "localhost:60000" };

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
}

// Everything that is stored.
QString stored()
{
    return settings::recentFiles().join(' ') + ", " + settings::usedInterfaces().join(' ') + ", " +
           QString::number(settings::displayMode());
}

} // namespace

class TestFailingSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsStoredIsTheOldOrTheNew_data();
    void whatIsStoredIsTheOldOrTheNew();
    void readingChangesNothing();
    void cleanupTestCase() { qInfo("%d calls of the settings were failed", failedCalls); }

private:
    static void storeAll()
    {
        settings::setRecentFiles(files);
        settings::setUsedInterfaces(interfaces);
        settings::setDisplayMode(valueFormats::modeDec);
    }

    static inline int failedCalls = 0;
};

void TestFailingSettings::whatIsStoredIsTheOldOrTheNew_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("with settings") << true;
    QTest::newRow("without settings") << false;
}

void TestFailingSettings::whatIsStoredIsTheOldOrTheNew()
{
    QFETCH(const bool, exists);
    const CTempSettings store;
    const QString name = store.fileName();
    QByteArray before = contentOf(name), after;
    QString storedBefore;
    const auto prepare = [&] {
        QFile::remove(name);
        if (exists)
            storeAll();
        before = contentOf(name);
        storedBefore = stored();
    };
    const auto check = [&](const tFault& fault) {
        const QByteArray content = contentOf(name);
        if (fault.nth == 0)
            after = content;
        if (content != before && content != after)
            return "the file holds " + QString::fromUtf8(content);
        const auto names = QDir(QFileInfo(name).path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
        if (fault.call != "unlink" && names.size() != (QFile::exists(name) ? 1 : 0))
            return "left over: " + names.join(' ');
        QFile::remove(name + ".lock"); // one that could not be removed: the library would wait half a minute for it
        settings::setDisplayMode(valueFormats::modeOct);
        const QStringList olds = exists ? files : QStringList();
        const QStringList news = QStringList("/new.eds") + olds;
        const QString rest = ", " + (exists ? interfaces.join(' ') : QString()) + ", 2";
        const QString now = stored();
        // The library may keep what it could not write, and write it along with the next value.
        const bool isOld = content != after && now == olds.join(' ') + rest;
        return isOld || now == news.join(' ') + rest ? QString() : "then stored: " + now;
    };
    const int failed = failEach(
        QFileInfo(name).path(), prepare,
        [] { settings::setRecentFiles(settings::promoted(settings::recentFiles(), "/new.eds")); }, check);
    QVERIFY(failed > 0);
    failedCalls += failed;
}

void TestFailingSettings::readingChangesNothing()
{
    const CTempSettings store;
    storeAll();
    const QByteArray before = contentOf(store.fileName());
    QString whole, found;
    const int failed = failEach(
        QFileInfo(store.fileName()).path(), [] {}, [&] { found = stored(); },
        [&](const tFault& fault) {
            if (fault.nth == 0)
                whole = found;
            return contentOf(store.fileName()) == before && stored() == whole ? QString() : "stored: " + stored();
        });
    QVERIFY(failed > 0);
    failedCalls += failed;
}

QTEST_GUILESS_MAIN(TestFailingSettings)
#include "TestFailingSettings.moc"
