#include "QVUserDefaults.h"

#include <QDir>
#include <QSaveFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Writes as another program would: replacing the file by a rename, or rewriting it in place.
void writeFile(const QString &path, const QByteArray &contents, bool replace = true)
{
    QSaveFile saveFile(path);
    QFile file(path);
    QIODevice &device = replace ? static_cast<QIODevice &>(saveFile) : file;
    QVERIFY(device.open(QIODevice::WriteOnly | QIODevice::Truncate));
    device.write(contents);
    QVERIFY(!replace || saveFile.commit());
}

QStringList brokenFiles(const QTemporaryDir &directory)
{
    return QDir(directory.path()).entryList({QStringLiteral("settings.json.broken-2*")}, QDir::Files);
}

} // namespace

class TestUserDefaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void brokenFileIsMovedAside();
    void outsideChangeIsPickedUp_data();
    void outsideChangeIsPickedUp();
};

void TestUserDefaults::brokenFileIsMovedAside()
{
    // Broken from outside while running: moved aside and kept, the values in memory stay.
    QTemporaryDir directory;
    QVUserDefaults defaults(directory.filePath(QStringLiteral("settings.json")));
    defaults.setObject(7, QStringLiteral("Move Delta"));
    QSignalSpy changed(&defaults, &QVUserDefaults::changedExternally);
    writeFile(defaults.filePath(), "{ not json");
    QTRY_COMPARE_WITH_TIMEOUT(brokenFiles(directory).size(), 1, 5000);
    QCOMPARE(defaults.integerForKey(QStringLiteral("Move Delta")), 7);
    QCOMPARE(changed.count(), 0);
    defaults.setObject(8, QStringLiteral("Move Delta")); // a fresh file; the copy is never written
    QCOMPARE(QVUserDefaults(defaults.filePath()).integerForKey(QStringLiteral("Move Delta")), 8);
    QFile broken(directory.filePath(brokenFiles(directory).first()));
    QVERIFY(broken.open(QIODevice::ReadOnly));
    QCOMPARE(broken.readAll(), QByteArray("{ not json"));
}

void TestUserDefaults::outsideChangeIsPickedUp_data()
{
    QTest::addColumn<bool>("replace");
    QTest::newRow("replaced by rename") << true;
    QTest::newRow("rewritten in place") << false;
}

void TestUserDefaults::outsideChangeIsPickedUp()
{
    QFETCH(bool, replace);
    QTemporaryDir directory;
    // The folder does not exist yet when the store starts, as on a first launch.
    QVUserDefaults defaults(directory.filePath(QStringLiteral("corvane/settings.json")));
    QSignalSpy changed(&defaults, &QVUserDefaults::changedExternally);
    defaults.setObject(1, QStringLiteral("Application Mode")); // makes the folder, then watched

    writeFile(defaults.filePath(), R"({"Application Mode": 2})", replace);
    QTRY_COMPARE_WITH_TIMEOUT(defaults.integerForKey(QStringLiteral("Application Mode")), 2, 5000);
    QCOMPARE(changed.count(), 1);
    // Still watched; each change is signalled once.
    writeFile(defaults.filePath(), R"({"Stealth Mode": true})", replace);
    QTRY_VERIFY_WITH_TIMEOUT(defaults.boolForKey(QStringLiteral("Stealth Mode")), 5000);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(defaults.integerForKey(QStringLiteral("Application Mode")), 0);
}

QTEST_GUILESS_MAIN(TestUserDefaults)
#include "tst_userdefaults.moc"
