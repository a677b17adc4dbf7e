#include "QVLogCapture.h"
#include "QVOutsideWriter.h"
#include "QVUserDefaults.h"

#include <QDir>
#include <QJsonArray>
#include <QProcess>
#include <QSignalSpy>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <sys/fsuid.h>
#include <unistd.h>

namespace
{

void writeFile(const QString &path, const QByteArray &contents, QVOutsideWriter::Kind kind = QVOutsideWriter::Rename)
{
    QVERIFY(QVOutsideWriter::write(path, contents, kind));
}

QByteArray fileContents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList brokenFiles(const QTemporaryDir &directory)
{
    return QDir(directory.path()).entryList({ QStringLiteral("settings.json.broken-2*") }, QDir::Files);
}

QByteArray onlyBrokenFileContents(const QTemporaryDir &directory)
{
    const QStringList broken = brokenFiles(directory);
    return broken.size() == 1 ? fileContents(directory.filePath(broken.first())) : QByteArray();
}

// Root reads every file whatever its mode; as nobody, a file without read
// permission is closed to this thread as it would be to a user's own corvane.
class FileAccessAsNobody final
{
public:
    FileAccessAsNobody()
    {
        if (::geteuid() == 0)
            ::setfsuid(65534);
    }
    ~FileAccessAsNobody() { ::setfsuid(::geteuid()); }
    static bool works()
    {
        if (::geteuid() != 0)
            return true;
        const FileAccessAsNobody nobody;
        return ::setfsuid(uid_t(-1)) == 65534; // an invalid id only reports the current one
    }
};

const QString delayKey = QStringLiteral("Move Delta");

// A store on a file of its own, and what it signals and logs.
struct Store final {
    // Has an outside edit leave the file unparsable, and waits until it is judged so.
    bool breakFromOutside(const QByteArray &contents)
    {
        defaults.setObject(7, delayKey);
        return QVOutsideWriter::write(defaults.filePath(), contents, QVOutsideWriter::InPlace)
            && QTest::qWaitFor([this] { return log.lines(QStringLiteral("cannot be read")).size() == 1; }, 5000);
    }

    QTemporaryDir directory;
    QVUserDefaults defaults { directory.filePath(QStringLiteral("settings.json")) };
    QSignalSpy changed { &defaults, &QVUserDefaults::changedExternally };
    QVLogCapture log;
};

} // namespace

class TestUserDefaults final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outsideChangeIsPickedUp_data();
    void outsideChangeIsPickedUp();
    void unparsableAtStartIsMovedAside();
    void unparsableWhileRunningIsLeftAloneUntilQuit();
    void unparsableWhileRunningIsTakenOnceFixed();
    void changeNotYetSeenAtQuitIsTakenIn();
    void unreadableFileIsNeverWrittenOver();
    void fileIsKeptAsideBeforeTheNextWrite();
    void settingsFileFollowsTheEnvironment();
};

void TestUserDefaults::outsideChangeIsPickedUp_data()
{
    QTest::addColumn<QVOutsideWriter::Kind>("writer");
    QTest::newRow("replaced by rename") << QVOutsideWriter::Rename;
    QTest::newRow("rewritten in place") << QVOutsideWriter::InPlace;
    QTest::newRow("rewritten in place, slowly") << QVOutsideWriter::SlowInPlace;
}

void TestUserDefaults::outsideChangeIsPickedUp()
{
    QFETCH(QVOutsideWriter::Kind, writer);
    QTemporaryDir directory;
    // The folder does not exist yet when the store starts, as on a first launch.
    QVUserDefaults defaults(directory.filePath(QStringLiteral("corvane/settings.json")));
    QSignalSpy changed(&defaults, &QVUserDefaults::changedExternally);
    defaults.setObject(1, QStringLiteral("Application Mode")); // makes the folder, then watched

    const QByteArray padding(2000, ' '); // so that half a file is no file
    writeFile(defaults.filePath(), R"({"Application Mode": 2,)" + padding + R"("Move Delta": 5})", writer);
    QTRY_COMPARE_WITH_TIMEOUT(defaults.integerForKey(QStringLiteral("Application Mode")), 2, 5000);
    QCOMPARE(defaults.integerForKey(delayKey), 5);
    QCOMPARE(changed.count(), 1);
    // Still watched, after a rename too; each change is signalled once.
    writeFile(defaults.filePath(), "{" + padding + R"("Stealth Mode": true})", writer);
    QTRY_VERIFY_WITH_TIMEOUT(defaults.boolForKey(QStringLiteral("Stealth Mode")), 5000);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(defaults.integerForKey(QStringLiteral("Application Mode")), 0);
    QVERIFY(defaults.mayWriteFile());
    QVERIFY(QDir(QFileInfo(defaults.filePath()).path()).entryList({ QStringLiteral("*.broken-*") }).isEmpty());
}

void TestUserDefaults::unparsableAtStartIsMovedAside()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("settings.json"));
    writeFile(path, "{\"Move Delta\": 3,");
    QVUserDefaults defaults(path);
    QCOMPARE(onlyBrokenFileContents(directory), QByteArray("{\"Move Delta\": 3,"));
    QVERIFY(!QFile::exists(path));
    QVERIFY(defaults.mayWriteFile() && defaults.setObject(4, delayKey));
}

void TestUserDefaults::unparsableWhileRunningIsLeftAloneUntilQuit()
{
    Store store;
    QVERIFY(store.breakFromOutside("{ not json"));
    QVERIFY2(store.log.text().contains(QLatin1String("left as it is")), qPrintable(store.log.text()));

    // The file stays, the values in memory stay, and nothing is written over the file.
    QVUserDefaults &defaults = store.defaults;
    QVERIFY(!defaults.mayWriteFile());
    QCOMPARE(defaults.integerForKey(delayKey), 7);
    QVERIFY(!defaults.setObject(8, delayKey));
    QCOMPARE(fileContents(defaults.filePath()), QByteArray("{ not json"));
    QVERIFY(brokenFiles(store.directory).isEmpty());
    QCOMPARE(store.changed.count(), 0);

    // At quit it is kept aside as it is, and the last write goes out.
    defaults.prepareForFinalWrite();
    QCOMPARE(onlyBrokenFileContents(store.directory), QByteArray("{ not json"));
    QVERIFY(defaults.setObject(9, QStringLiteral("Application Mode")));
    QCOMPARE(QVUserDefaults(defaults.filePath()).integerForKey(delayKey), 8);
    QCOMPARE(store.log.lines(QStringLiteral("cannot be read")).size(), 2); // judged, then moved aside
}

void TestUserDefaults::unparsableWhileRunningIsTakenOnceFixed()
{
    Store store;
    QVERIFY(store.breakFromOutside("{\"Move Delta\": "));
    writeFile(store.defaults.filePath(), "{\"Move Delta\": 12}", QVOutsideWriter::InPlace);
    QTRY_COMPARE_WITH_TIMEOUT(store.defaults.integerForKey(delayKey), 12, 5000);
    QCOMPARE(store.changed.count(), 1);
    QVERIFY(store.defaults.mayWriteFile());
    store.defaults.prepareForFinalWrite();
    QVERIFY(store.defaults.setObject(13, delayKey));
    QVERIFY(brokenFiles(store.directory).isEmpty());
}

void TestUserDefaults::changeNotYetSeenAtQuitIsTakenIn()
{
    Store store;
    QVUserDefaults &defaults = store.defaults;
    defaults.setObject(7, delayKey);
    writeFile(defaults.filePath(), "{\"Move Delta\": 12, \"Application Mode\": 2}", QVOutsideWriter::InPlace);
    defaults.prepareForFinalWrite(); // before the event loop has seen the change
    QCOMPARE(store.changed.count(), 1);
    QCOMPARE(defaults.integerForKey(delayKey), 12);
    QVERIFY(defaults.setObject(13, delayKey));
    QCOMPARE(QVUserDefaults(defaults.filePath()).integerForKey(QStringLiteral("Application Mode")), 2);
}

void TestUserDefaults::unreadableFileIsNeverWrittenOver()
{
    if (!FileAccessAsNobody::works())
        QSKIP("cannot take the file access rights of another user here");
    QTemporaryDir directory;
    const auto everyone = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
        | QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup | QFileDevice::ReadOther
        | QFileDevice::WriteOther | QFileDevice::ExeOther;
    QVERIFY(QFile::setPermissions(directory.path(), everyone));
    const QString path = directory.filePath(QStringLiteral("settings.json"));
    const QByteArray stored = "{\"Move Delta\": 3}";
    writeFile(path, stored);
    // Write-only: a file that could not be replaced would be safe by accident.
    QVERIFY(QFile::setPermissions(path, QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther));

    QVLogCapture log;
    {
        const FileAccessAsNobody nobody;
        QVUserDefaults defaults(path);
        QVERIFY(!defaults.mayWriteFile());
        QCOMPARE(defaults.integerForKey(delayKey), 0);
        QVERIFY(!defaults.setObject(4, delayKey));
        defaults.prepareForFinalWrite();
        QVERIFY(!defaults.setObject(5, delayKey));
    }
    QCOMPARE(fileContents(path), stored);
    const QStringList said = log.lines(QStringLiteral("cannot be read"));
    QCOMPARE(said.size(), 1);
    QVERIFY2(said.first().contains(QLatin1String("does not write over it")), qPrintable(said.first()));
    QVERIFY(brokenFiles(directory).isEmpty());

    // Once another program lets it be read, it is taken in and written again.
    {
        const FileAccessAsNobody nobody;
        QVUserDefaults blocked(path);
        QSignalSpy changed(&blocked, &QVUserDefaults::changedExternally);
        QCOMPARE(QProcess::execute(QStringLiteral("chmod"), { QStringLiteral("666"), path }), 0);
        QTRY_COMPARE_WITH_TIMEOUT(changed.count(), 1, 5000);
        QCOMPARE(blocked.integerForKey(delayKey), 3);
        QVERIFY(blocked.setObject(6, delayKey));
    }
    QCOMPARE(QVUserDefaults(path).integerForKey(delayKey), 6);
}

void TestUserDefaults::fileIsKeptAsideBeforeTheNextWrite()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("settings.json"));
    const QByteArray stored = "{\"Custom Controls\": 5, \"Move Delta\": 3}";
    writeFile(path, stored);
    QVUserDefaults defaults(path);
    QVLogCapture log;
    defaults.keepFileAsideBeforeNextWrite(QStringLiteral("\"Custom Controls\" is not a list"));
    QVERIFY(brokenFiles(directory).isEmpty()); // nothing is lost until something is written
    QVERIFY(defaults.setObject(QJsonArray(), QStringLiteral("Custom Controls")));
    QCOMPARE(onlyBrokenFileContents(directory), stored);
    const QStringList kept = log.lines(brokenFiles(directory).first());
    QCOMPARE(kept.size(), 1);
    QVERIFY(kept.first().contains(QLatin1String("is not a list")));
    QVERIFY(defaults.setObject(4, delayKey)); // kept once
    QCOMPARE(brokenFiles(directory).size(), 1);
    QCOMPARE(QVUserDefaults(path).integerForKey(delayKey), 4);
}

// Where the login session's Corvane finds its settings must match where it saved them.
void TestUserDefaults::settingsFileFollowsTheEnvironment()
{
    const QByteArray savedConfig = qgetenv("XDG_CONFIG_HOME"), savedSettings = qgetenv("CORVANE_SETTINGS");
    auto restore = qScopeGuard([&] {
        qputenv("XDG_CONFIG_HOME", savedConfig);
        qputenv("CORVANE_SETTINGS", savedSettings);
    });
    const QString standard = QDir::homePath() + QStringLiteral("/.config/corvane/settings.json");
    qunsetenv("CORVANE_SETTINGS");
    qputenv("XDG_CONFIG_HOME", "/srv/config");
    QCOMPARE(QVUserDefaults::defaultFilePath(), QStringLiteral("/srv/config/corvane/settings.json"));
    qputenv("XDG_CONFIG_HOME", "relative/config"); // not absolute: invalid, as for every XDG folder
    QCOMPARE(QVUserDefaults::standardFilePath(), standard);
    qputenv("CORVANE_SETTINGS", "/elsewhere.json");
    QCOMPARE(QVUserDefaults::defaultFilePath(), QStringLiteral("/elsewhere.json"));
    QCOMPARE(QVUserDefaults::standardFilePath(), standard);
}

QTEST_GUILESS_MAIN(TestUserDefaults)
#include "tst_userdefaults.moc"
