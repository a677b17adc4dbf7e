// The restart helper as a real process: it starts the program only after the awaited
// process has ended, in a session of its own, and starts nothing when it never ends.
#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

// Writes what a restarted program sees: whether the awaited process was still there
// (a zombie counts as ended), its session, its standard output, its arguments.
const QByteArray recorder = R"sh(out="$1"; awaited="$2"; shift 2
state=gone
stat=$(cat /proc/$awaited/stat 2>/dev/null)
case "$stat" in "" | *") Z "*) ;; *) state=alive ;; esac
read -r pid comm st ppid pgrp session rest < /proc/$$/stat
output=$(readlink /proc/$$/fd/1)
{ echo "$state"; [ "$session" = "$$" ] && echo leader || echo member; echo "$output"
  for argument in "$@"; do echo "[$argument]"; done; } > "$out.part"
mv "$out.part" "$out"
)sh";

} // namespace

class TestRestartHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void startsTheProgramAfterTheProcessEnded();
    void startsNothingWhileTheProcessLives();
    void reportsAProgramThatCannotStart();
    void badArguments_data();
    void badArguments();

private:
    int runHelper(const QStringList &arguments, const QProcessEnvironment &environment, QString *errors = nullptr);

    QTemporaryDir m_directory;
    QString m_script;
};

void TestRestartHelper::initTestCase()
{
    QVERIFY(m_directory.isValid());
    m_script = m_directory.filePath(QStringLiteral("recorder.sh"));
    QFile script(m_script);
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write(recorder);
}

int TestRestartHelper::runHelper(const QStringList &arguments, const QProcessEnvironment &environment, QString *errors)
{
    QProcess helper;
    helper.setProcessEnvironment(environment);
    helper.start(QStringLiteral(CORVANE_RESTART_BINARY), arguments);
    if (!helper.waitForFinished(30000))
        return -1;
    if (errors)
        *errors = QString::fromLocal8Bit(helper.readAllStandardError());
    return helper.exitStatus() == QProcess::NormalExit ? helper.exitCode() : -1;
}

void TestRestartHelper::startsTheProgramAfterTheProcessEnded()
{
    const QString output = m_directory.filePath(QStringLiteral("started"));
    // The awaited process stays our unreaped child for a while after it ends.
    QProcess awaited;
    awaited.start(QStringLiteral("sleep"), { QStringLiteral("0.3") });
    QVERIFY(awaited.waitForStarted());
    const QString pid = QString::number(awaited.processId());

    const QStringList arguments { QStringLiteral("--settings"), QStringLiteral("/a b/$x \"q\".json"), QString() };
    QString errors;
    QCOMPARE(runHelper(QStringList { QStringLiteral("/bin/sh"), pid, m_script, output, pid } + arguments,
                 QProcessEnvironment::systemEnvironment(), &errors),
        0);
    QVERIFY2(errors.isEmpty(), qPrintable(errors));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(output), 10000);
    QFile file(output);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.value(0), QStringLiteral("gone"));
    QCOMPARE(lines.value(1), QStringLiteral("leader"));
    QCOMPARE(lines.value(2), QStringLiteral("/dev/null"));
    QCOMPARE(lines.mid(3),
        (QStringList { QStringLiteral("[--settings]"), QStringLiteral("[/a b/$x \"q\".json]"), QStringLiteral("[]") }));
    awaited.waitForFinished();
}

void TestRestartHelper::startsNothingWhileTheProcessLives()
{
    const QString output = m_directory.filePath(QStringLiteral("never"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("CORVANE_RESTART_TIMEOUT_MS"), QStringLiteral("300"));
    const QString self = QString::number(QCoreApplication::applicationPid());
    QString errors;
    QCOMPARE(runHelper({ QStringLiteral("/bin/sh"), self, m_script, output, self }, environment, &errors), 1);
    QCOMPARE(errors.count(u'\n'), 1);
    QVERIFY2(errors.contains(QStringLiteral("nothing started")), qPrintable(errors));
    QTest::qWait(300); // a program started by mistake would have written by now
    QVERIFY(!QFile::exists(output));
}

void TestRestartHelper::reportsAProgramThatCannotStart()
{
    QString errors;
    const QString missing = m_directory.filePath(QStringLiteral("missing-binary"));
    QCOMPARE(runHelper({ missing, QStringLiteral("999999999") }, QProcessEnvironment::systemEnvironment(), &errors), 1);
    QVERIFY2(errors.contains(QStringLiteral("cannot start ") + missing), qPrintable(errors));
}

void TestRestartHelper::badArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("no pid") << QStringList { QStringLiteral("/bin/true") };
    QTest::newRow("empty binary") << QStringList { QString(), QStringLiteral("1") };
    QTest::newRow("word") << QStringList { QStringLiteral("/bin/true"), QStringLiteral("12x") };
    QTest::newRow("zero") << QStringList { QStringLiteral("/bin/true"), QStringLiteral("0") };
    QTest::newRow("huge") << QStringList { QStringLiteral("/bin/true"), QStringLiteral("99999999999999999999") };
}

void TestRestartHelper::badArguments()
{
    QFETCH(QStringList, arguments);
    QString errors;
    QCOMPARE(runHelper(arguments, QProcessEnvironment::systemEnvironment(), &errors), 2);
    QVERIFY(errors.startsWith(QStringLiteral("usage: corvane-restart")));
}

QTEST_GUILESS_MAIN(TestRestartHelper)
#include "tst_restart_helper.moc"
