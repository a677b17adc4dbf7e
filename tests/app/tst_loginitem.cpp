// Start at login through XDG Autostart: what is written, what counts as ours, and
// that entries of other programs stay exactly as they were.
#include "QVDesktopEntry.h"
#include "QVLoginItem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const QString binary = QStringLiteral("/opt/corvane/bin/corvane");

void writeFile(const QString &path, const QByteArray &contents)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contents);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray entryRunning(const QByteArray &exec, const QByteArray &extra = {})
{
    return "[Desktop Entry]\nType=Application\nName=Something\nExec=" + exec + "\n" + extra;
}

} // namespace

class TestLoginItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void enableWritesTheExactCommand_data();
    void enableWritesTheExactCommand();
    void disableRemovesOnlyOnce();
    void handWrittenEntries_data();
    void handWrittenEntries();
    void entryDisabledByTheDesktopIsOff_data();
    void entryDisabledByTheDesktopIsOff();
    void staleCopiesArePurged_data();
    void staleCopiesArePurged();
    void otherProgramsAreNeverTouched();
    void missingDirectoryIsCreated();

private:
    QString path(const QString &name) const { return QDir(m_directory->path()).filePath(name); }
    QStringList entries() const { return QDir(m_directory->path()).entryList(QDir::Files, QDir::Name); }

    std::unique_ptr<QTemporaryDir> m_directory;
};

void TestLoginItem::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(m_directory->isValid());
}

void TestLoginItem::enableWritesTheExactCommand_data()
{
    QTest::addColumn<QString>("binaryPath");
    QTest::addColumn<QString>("settingsPath");
    QTest::addColumn<QByteArray>("execLine");
    QTest::newRow("default settings") << binary << QString() << QByteArray("Exec=/opt/corvane/bin/corvane\n");
    QTest::newRow("space and quotes") << QStringLiteral("/opt/my \"best\" apps/corvane") << QString()
                                      << QByteArray("Exec=\"/opt/my \\\\\"best\\\\\" apps/corvane\"\n");
    QTest::newRow("dollar, backslash, percent") << binary << QStringLiteral("/home/u/$HOME\\x/100% s.json")
                                                << QByteArray("Exec=/opt/corvane/bin/corvane --settings "
                                                              "\"/home/u/\\\\$HOME\\\\\\\\x/100%% s.json\"\n");
}

void TestLoginItem::enableWritesTheExactCommand()
{
    QFETCH(QString, binaryPath);
    QFETCH(QString, settingsPath);
    QFETCH(QByteArray, execLine);
    QVLoginItem item(binaryPath, settingsPath, m_directory->path());
    QVERIFY(!item.isLoginItem());
    QVERIFY(item.setLoginItem(true));
    QCOMPARE(entries(), QStringList { QStringLiteral("corvane.desktop") });
    const QByteArray contents = readFile(path(QStringLiteral("corvane.desktop")));
    QVERIFY2(contents.contains('\n' + execLine), contents.constData());
    QVERIFY(contents.startsWith("[Desktop Entry]\n"));
    for (const char *line : { "Type=Application\n", "Name=Corvane\n", "Icon=corvane\n", "NoDisplay=false\n",
             "X-GNOME-Autostart-Delay=3\n", "X-KDE-autostart-after=panel\n" })
        QVERIFY2(contents.contains(line), line);

    QVDesktopEntry entry;
    QVERIFY(entry.load(path(QStringLiteral("corvane.desktop"))));
    QStringList expected { binaryPath };
    if (!settingsPath.isEmpty())
        expected << QStringLiteral("--settings") << settingsPath;
    QCOMPARE(entry.execArguments(), expected);
    QVERIFY(item.isLoginItem());
    QVERIFY(item.setLoginItem(true)); // kept, not written twice
    QCOMPARE(entries().size(), 1);
}

void TestLoginItem::disableRemovesOnlyOnce()
{
    QVLoginItem item(binary, QString(), m_directory->path());
    QVERIFY(item.setLoginItem(true));
    QVERIFY(item.setLoginItem(false));
    QVERIFY(entries().isEmpty());
    QVERIFY(!item.isLoginItem());
    QVERIFY(!item.setLoginItem(false));
}

void TestLoginItem::handWrittenEntries_data()
{
    QTest::addColumn<QString>("settingsPath");
    QTest::addColumn<QByteArray>("exec");
    QTest::addColumn<bool>("ours");
    QTest::newRow("field code") << QString() << QByteArray("/opt/corvane/bin/corvane %U") << true;
    QTest::newRow("quoted program") << QString() << QByteArray("\"/opt/corvane/bin/corvane\"") << true;
    QTest::newRow("unclean path") << QString() << QByteArray("/opt/corvane//lib/../bin/./corvane") << true;
    QTest::newRow("settings with =") << QStringLiteral("/s/a.json")
                                     << QByteArray("/opt/corvane/bin/corvane --settings=/s/a.json") << true;
    QTest::newRow("settings quoted") << QStringLiteral("/s/a b.json")
                                     << QByteArray("/opt/corvane/bin/corvane --settings \"/s/a b.json\"") << true;
    QTest::newRow("other settings") << QStringLiteral("/s/a.json")
                                    << QByteArray("/opt/corvane/bin/corvane --settings /s/b.json") << false;
    QTest::newRow("settings where default")
        << QString() << QByteArray("/opt/corvane/bin/corvane --settings /s/b.json") << false;
    QTest::newRow("default where settings")
        << QStringLiteral("/s/a.json") << QByteArray("/opt/corvane/bin/corvane") << false;
    QTest::newRow("through env") << QString() << QByteArray("env A=1 /opt/corvane/bin/corvane") << false;
}

void TestLoginItem::handWrittenEntries()
{
    QFETCH(QString, settingsPath);
    QFETCH(QByteArray, exec);
    QFETCH(bool, ours);
    const QByteArray contents = entryRunning(exec);
    writeFile(path(QStringLiteral("mine.desktop")), contents);
    QVLoginItem item(binary, settingsPath, m_directory->path());
    QCOMPARE(item.isLoginItem(), ours);
    QCOMPARE(item.setLoginItem(false), ours);
    QCOMPARE(QFile::exists(path(QStringLiteral("mine.desktop"))), !ours);
}

void TestLoginItem::entryDisabledByTheDesktopIsOff_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("Hidden") << QByteArray("Hidden=true\n");
    QTest::newRow("GNOME") << QByteArray("X-GNOME-Autostart-enabled=false\n");
}

void TestLoginItem::entryDisabledByTheDesktopIsOff()
{
    QFETCH(QByteArray, key);
    writeFile(path(QStringLiteral("corvane.desktop")), entryRunning(binary.toUtf8(), key));
    QVLoginItem item(binary, QString(), m_directory->path());
    QVERIFY(!item.isLoginItem());
    QVERIFY(item.setLoginItem(true));
    QVERIFY(item.isLoginItem());
    QCOMPARE(entries(), QStringList { QStringLiteral("corvane.desktop") });
    QVERIFY(!readFile(path(QStringLiteral("corvane.desktop"))).contains(key));
}

void TestLoginItem::staleCopiesArePurged_data()
{
    QTest::addColumn<bool>("enable");
    QTest::newRow("enable") << true;
    QTest::newRow("disable") << false;
}

void TestLoginItem::staleCopiesArePurged()
{
    QFETCH(bool, enable);
    writeFile(path(QStringLiteral("corvane.desktop")), entryRunning("/home/u/old/CorVane --settings /x.json"));
    writeFile(path(QStringLiteral("old copy.desktop")), entryRunning("corvane-not-on-path-dir/corvane"));
    QVLoginItem item(binary, QString(), m_directory->path());
    QCOMPARE(item.setLoginItem(enable), enable);
    QCOMPARE(entries(), enable ? QStringList { QStringLiteral("corvane.desktop") } : QStringList());
    QCOMPARE(item.isLoginItem(), enable);
}

void TestLoginItem::otherProgramsAreNeverTouched()
{
    // Odd bytes and layout on purpose: a rewrite would show.
    const QMap<QString, QByteArray> others {
        { QStringLiteral("corvane.desktop"), entryRunning("/usr/bin/other", "Hidden=true\n# keep me  \n") },
        { QStringLiteral("corvane-2.desktop"), entryRunning("/opt/corvane/bin/corvane --settings /elsewhere.json") },
        { QStringLiteral("tool.desktop"), "[Desktop Entry]\r\nExec=tool\r\n\r\n[Other]\nExec=/x/corvane\n" },
    };
    for (auto it = others.begin(); it != others.end(); ++it)
        writeFile(path(it.key()), it.value());
    QVLoginItem item(binary, QString(), m_directory->path());
    QVERIFY(!item.isLoginItem());
    QVERIFY(item.setLoginItem(true));
    QVERIFY(item.isLoginItem());
    QVERIFY(QFile::exists(path(QStringLiteral("corvane-3.desktop"))));
    QVERIFY(item.setLoginItem(false));
    QCOMPARE(entries(), QStringList(others.keys()));
    for (auto it = others.begin(); it != others.end(); ++it)
        QCOMPARE(readFile(path(it.key())), it.value());
}

void TestLoginItem::missingDirectoryIsCreated()
{
    const QString directory = path(QStringLiteral("config/autostart"));
    QVLoginItem item(binary, QString(), directory);
    QVERIFY(!item.isLoginItem());
    QVERIFY(!item.setLoginItem(false));
    QVERIFY(!QFileInfo::exists(directory));
    QVERIFY(item.setLoginItem(true));
    QVERIFY(QFile::exists(directory + QStringLiteral("/corvane.desktop")));

    qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral("config"))));
    QCOMPARE(QVLoginItem::defaultAutostartDirectory(), directory);
    QVERIFY(QVLoginItem(binary, QString()).isLoginItem());
}

QTEST_GUILESS_MAIN(TestLoginItem)
#include "tst_loginitem.moc"
