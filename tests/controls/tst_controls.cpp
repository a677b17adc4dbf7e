#include "QVCustomControlManager.h"
#include "QVFakeApplication.h"
#include "QVLogCapture.h"
#include "QVModifierFlagBits.h"

#include <QDir>
#include <QJsonArray>
#include <QTest>

using namespace QVModifierFlag;

namespace
{

QJsonObject withHotKey(
    QJsonObject control, double keyCode, double flags = double(Control), const QString &text = QStringLiteral("^→"))
{
    control.insert(QStringLiteral("Hot Key"),
        QJsonObject { { QStringLiteral("Identifier"), QStringLiteral("HK") },
            { QStringLiteral("Visual Representation"), text }, { QStringLiteral("Key Code"), keyCode },
            { QStringLiteral("Modifier Flags"), flags } });
    return control;
}

QJsonObject moveBy(qint64 delta)
{
    return { { QStringLiteral("Move Delta"), delta } };
}

QList<bool> activeHotKeys(const QVCustomControlManager &manager)
{
    QList<bool> active;
    for (const QVCustomControlRef &control : manager.controls())
        active.append(control->hotKey() && !control->hasInactiveHotKey());
    return active;
}

QByteArray fileContents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The manager with an editor selection of its own.
struct Fixture final : public QVCustomControlSelection {
    Fixture()
    {
        manager.setSelection(this);
        app.hotKeysInUse = [this] {
            QList<QVHotKeyRef> hotKeys;
            for (const QVCustomControlRef &control : manager.controls())
                if (control->hotKey())
                    hotKeys.append(control->hotKey());
            return hotKeys;
        };
    }
    ~Fixture() override { app.hotKeysInUse = nullptr; }
    bool isControlSelected(const QVCustomControlRepresentation &control) const override
    {
        return std::any_of(selected.begin(), selected.end(), [&](const auto &ref) { return ref.get() == &control; });
    }
    QList<QVCustomControlRef> selectedControls() const override { return selected; }

    QVFakeApplication app;
    int beeps = 0;
    QVCustomControlManager manager { &app.defaults, &app, [this] { ++beeps; } };
    QList<QVCustomControlRef> selected;
};

} // namespace

class TestControls final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dictionaryForm();
    void settingHotKeys();
    void deleteSelected();
    void hotKeysThatCannotBeHadAreKept();
    void outsideEditRebuildsTheList();
    void listOfOtherThanDictionariesIsKeptAside_data();
    void listOfOtherThanDictionariesIsKeptAside();
    void addBelowSelection_data();
    void addBelowSelection();
    void performNames_data();
    void performNames();
};

void TestControls::dictionaryForm()
{
    QVFakeApplication app;
    const QVCustomControlRef empty = QVCustomControlRepresentation::controlWithDictionaryRepresentation({}, &app);
    QVERIFY(empty->action() == QVAction::Move && empty->moveDirection() == QVPosition::Right);
    QVERIFY(empty->moveDelta() == 1 && !empty->moveAccelerate() && !empty->hotKey() && empty->title().isNull());
    // The identifier is made on first use, then kept and written.
    const QString identifier = empty->uniqueIdentifier();
    QVERIFY(!identifier.isEmpty());
    QCOMPARE(empty->dictionaryRepresentation().value(QStringLiteral("Identifier")), QJsonValue(identifier));

    const QJsonObject stored = withHotKey(
        { { QStringLiteral("Identifier"), QStringLiteral("6F1C") }, { QStringLiteral("Title"), QStringLiteral("Mine") },
            { QStringLiteral("Collapsed"), true }, { QStringLiteral("Action"), 41 },
            { QStringLiteral("Move Direction"), 8 }, { QStringLiteral("Move Delta"), 25 },
            { QStringLiteral("Accelerate"), true }, { QStringLiteral("Confine to Display"), true },
            { QStringLiteral("Move to Edge/Corner Direction"), 10 },
            { QStringLiteral("Move to Other Display Direction"), 9 },
            { QStringLiteral("Reposition Proportionally"), true }, { QStringLiteral("Loop Through Displays"), true } },
        114);
    const QVCustomControlRef copy = QVCustomControlRepresentation::controlWithDictionaryRepresentation(stored, &app);
    QCOMPARE(copy->dictionaryRepresentation(), stored);
    copy->setTitle(QString());
    copy->setHotKey(nullptr);
    QCOMPARE(copy->dictionaryRepresentation().size(), 11); // neither title nor hot key written

    // Wrong types are read as numbers and truths, never range-checked.
    const QVCustomControlRef odd = QVCustomControlRepresentation::controlWithDictionaryRepresentation(
        { { QStringLiteral("Action"), QStringLiteral("33") }, { QStringLiteral("Move Delta"), 2.9 },
            { QStringLiteral("Accelerate"), QStringLiteral("yes") }, { QStringLiteral("Title"), true },
            { QStringLiteral("Move Direction"), 42 }, { QStringLiteral("Hot Key"), QStringLiteral("^A") } },
        &app);
    QCOMPARE(odd->action(), QVAction::MoveToEdgeOrCorner);
    QCOMPARE(odd->moveDelta(), 2);
    QCOMPARE(odd->moveDirection(), 42);
    QVERIFY(odd->moveAccelerate() && odd->title().isNull() && !odd->hotKey());
}

void TestControls::settingHotKeys()
{
    QVFakeApplication app;
    QVCustomControlRepresentation control(&app);
    const QString id = control.uniqueIdentifier();
    const auto hotKey = QVHotKey::hotKeyWithIdentifer(id, QStringLiteral("^→"), 114, Control);
    QVERIFY(!control.shouldSetHotKey(hotKey, QString())); // meant for another control
    QVERIFY(control.shouldSetHotKey(hotKey, id) && hotKey->isRegistered());
    app.platform.refused.append({ 38, QVCarbonModifier::Command });
    QVERIFY(!control.shouldSetHotKey(QVHotKey::hotKeyWithIdentifer(id, QStringLiteral("⌘A"), 38, Command), id));
    QCOMPARE(control.hotKey(), hotKey); // a refused hot key leaves the old one
    control.setAction(QVAction::None); // nothing to trigger: refused, but clearing is allowed
    QVERIFY(!control.shouldSetHotKey(QVHotKey::hotKeyWithIdentifer(id, QStringLiteral("^↑"), 111, Control), id));
    QVERIFY(control.shouldSetHotKey(nullptr, id) && !control.hotKey());
}

void TestControls::deleteSelected()
{
    Fixture f;
    f.app.set(QStringLiteral("Custom Controls"),
        QJsonArray { withHotKey({}, 113), QStringLiteral("not a control"), withHotKey({}, 114) });
    f.manager.loadControls();
    QCOMPARE(f.manager.controls().size(), 2);
    f.manager.deleteSelectedControls();
    QCOMPARE(f.beeps, 1); // nothing selected
    f.selected = { f.manager.controls()[0] };
    f.manager.deleteSelectedControls();
    f.selected.clear();
    QCOMPARE(f.manager.controls().size(), 1);
    QCOMPARE(f.app.platform.activeHotKeys.size(), 1); // hot keys go with their controls
    QCOMPARE(f.app.platform.activeHotKeys.first().keyCode, quint16(114));
}

void TestControls::hotKeysThatCannotBeHadAreKept()
{
    Fixture f;
    f.app.platform.refused.append({ 113, QVCarbonModifier::Control }); // held by another program
    const QJsonArray stored {
        withHotKey(moveBy(1), 113, double(Control), QStringLiteral("^←")), withHotKey(moveBy(2), 114),
        withHotKey(moveBy(3), 114), // the same keys as the one before
        withHotKey(moveBy(4), 65650), // no X key code
        withHotKey(moveBy(5), 114, double(Control | 0x1000000)), // an unknown modifier
    };
    f.app.set(QStringLiteral("Custom Controls"), stored);
    QVLogCapture log;
    f.manager.loadControls();
    QCOMPARE(activeHotKeys(f.manager), QList<bool>({ false, true, false, false, false }));
    QCOMPARE(f.app.platform.activeHotKeys.size(), 1);
    const QStringList inactive = log.lines(QStringLiteral("kept but inactive"));
    QCOMPARE(inactive.size(), 4);
    QVERIFY2(inactive[0].contains(QLatin1String("held by another client")), qPrintable(inactive[0]));
    QVERIFY2(inactive[1].contains(QLatin1String("same keys")), qPrintable(inactive[1]));
    QVERIFY2(inactive[2].contains(QLatin1String("65650")), qPrintable(inactive[2]));

    // Written back as stored, and tried again: a control earlier in the list keeps the keys it shares.
    QCOMPARE(f.manager.controlDictionaryRepresentations().size(), stored.size());
    for (qsizetype index = 0; index < stored.size(); ++index)
        QCOMPARE(f.manager.controlDictionaryRepresentations()[index].toObject().value(QStringLiteral("Hot Key")),
            stored[index].toObject().value(QStringLiteral("Hot Key")));
    f.app.platform.refused.clear();
    f.manager.registerHotKeys();
    QCOMPARE(activeHotKeys(f.manager), QList<bool>({ true, true, false, false, false }));
    QCOMPARE(f.app.platform.activeHotKeys.size(), 2);
    for (const QVHotKeyRegistration &request : f.app.platform.registrationRequests)
        QCOMPARE_LT(request.keyCode, quint16(256));
}

void TestControls::outsideEditRebuildsTheList()
{
    Fixture f;
    const QString key = QStringLiteral("Custom Controls");
    f.app.set(key, QJsonArray { withHotKey(moveBy(1), 114) });
    f.manager.loadControls();
    const QVCustomControlRef first = f.manager.controls().first();
    f.app.set(QStringLiteral("Application Mode"), 2);
    QVERIFY(!f.manager.reloadControlsIfChanged()); // another setting: the list stays as it is
    QCOMPARE(f.manager.controls().first(), first);

    // The same keys for another control: free again once the old list lets go.
    f.app.set(key, QJsonArray { withHotKey(moveBy(20), 114), withHotKey(moveBy(30), 113, double(Control)) });
    QVERIFY(f.manager.reloadControlsIfChanged());
    QCOMPARE(f.manager.controls().size(), 2);
    QCOMPARE(f.manager.controls().first()->moveDelta(), 20);
    QCOMPARE(activeHotKeys(f.manager), QList<bool>({ true, true }));
    QCOMPARE(f.app.platform.activeHotKeys.size(), 2);
    QVERIFY(!first->hotKey()->isRegistered());

    // What it writes itself is no outside change.
    f.manager.save();
    QVERIFY(!f.manager.reloadControlsIfChanged());
    f.app.set(key, QJsonValue());
    QVERIFY(f.manager.reloadControlsIfChanged());
    QVERIFY(f.manager.controls().isEmpty() && f.app.platform.activeHotKeys.isEmpty());
}

void TestControls::listOfOtherThanDictionariesIsKeptAside_data()
{
    QTest::addColumn<QJsonValue>("stored");
    QTest::addColumn<int>("loaded");
    QTest::newRow("a number") << QJsonValue(5) << 0;
    QTest::newRow("a dictionary") << QJsonValue(withHotKey({}, 114)) << 0;
    QTest::newRow("a string among dictionaries")
        << QJsonValue(QJsonArray { withHotKey({}, 114), QStringLiteral("not a control") }) << 1;
}

void TestControls::listOfOtherThanDictionariesIsKeptAside()
{
    QFETCH(QJsonValue, stored);
    QFETCH(int, loaded);
    Fixture f;
    f.app.set(QStringLiteral("Custom Controls"), stored);
    const QByteArray original = fileContents(f.app.defaults.filePath());
    f.manager.loadControls();
    QCOMPARE(f.manager.controls().size(), loaded);
    f.manager.save();
    const QStringList aside = QDir(f.app.directory.path()).entryList({ QStringLiteral("settings.json.broken-*") });
    QCOMPARE(aside.size(), 1);
    QCOMPARE(fileContents(f.app.directory.filePath(aside.first())), original);
    QVERIFY(f.app.defaults.objectForKey(QStringLiteral("Custom Controls")).isArray());
}

void TestControls::addBelowSelection_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<bool>("belowSelection");
    QTest::addColumn<int>("expectedIndex");

    QTest::newRow("empty list") << 0 << QList<int>() << true << 0;
    QTest::newRow("one selected control") << 1 << QList<int> { 0 } << true << 1;
    QTest::newRow("first and second of three") << 3 << QList<int> { 0, 1 } << true << 2;
    QTest::newRow("first of three") << 3 << QList<int> { 0 } << true << 1;
    QTest::newRow("none of three") << 3 << QList<int>() << true << 3;
    QTest::newRow("not asked to") << 3 << QList<int> { 0 } << false << 3;
}

void TestControls::addBelowSelection()
{
    QFETCH(int, count);
    QFETCH(QList<int>, selected);
    QFETCH(bool, belowSelection);
    QFETCH(int, expectedIndex);

    Fixture f;
    for (int index = 0; index < count; ++index)
        f.manager.addControlWithDictionaryRepresentation({}, false);
    for (int index : selected)
        f.selected.append(f.manager.controls()[index]);
    const QVCustomControlRef added = f.manager.addControlWithDictionaryRepresentation({}, belowSelection);
    QCOMPARE(f.manager.controls().size(), count + 1);
    QCOMPARE(f.manager.controls().indexOf(added), expectedIndex);
}

void TestControls::performNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("expectedIndex"); // -1: nothing performed
    QTest::newRow("identifier") << QStringLiteral("left-id") << 1;
    QTest::newRow("title as shown, any case") << QStringLiteral("move LEFT") << 1;
    QTest::newRow("the first of two with one title") << QStringLiteral("Move Right") << 0;
    QTest::newRow("own title of an action") << QStringLiteral("press") << 3;
    QTest::newRow("a heading shares it: the action wins") << QStringLiteral("Pointer") << 4;
    QTest::newRow("a heading alone") << QStringLiteral("Section") << -1;
    QTest::newRow("nothing") << QStringLiteral("Move Up") << -1;
}

void TestControls::performNames()
{
    QFETCH(QString, name);
    QFETCH(int, expectedIndex);
    Fixture f;
    const auto add
        = [&f](const QJsonObject &dictionary) { f.manager.addControlWithDictionaryRepresentation(dictionary, false); };
    add({ { QStringLiteral("Action"), 31 } });
    add({ { QStringLiteral("Action"), 31 }, { QStringLiteral("Move Direction"), 9 },
        { QStringLiteral("Identifier"), QStringLiteral("left-id") } });
    add({ { QStringLiteral("Action"), 31 } });
    add({ { QStringLiteral("Action"), 101 }, { QStringLiteral("Title"), QStringLiteral("Press") } });
    add({ { QStringLiteral("Action"), 102 }, { QStringLiteral("Title"), QStringLiteral("Pointer") } });
    add({ { QStringLiteral("Action"), -101 }, { QStringLiteral("Title"), QStringLiteral("Section") } });
    // Before the action of the same title, so that only the preference for actions finds it.
    f.manager.sortControls([](const QVCustomControlRepresentation &control) { return control.action() < 0 ? 0 : 1; });
    add({ { QStringLiteral("Action"), -101 }, { QStringLiteral("Title"), QStringLiteral("Pointer") } });

    QString reason;
    const QVCustomControlRef found = f.manager.controlForPerformName(name, &reason);
    const QList<QVCustomControlRef> acting = [&f] {
        QList<QVCustomControlRef> controls;
        for (const QVCustomControlRef &control : f.manager.controls())
            if (control->action() > 0)
                controls.append(control);
        return controls;
    }();
    QCOMPARE(found ? int(acting.indexOf(found)) : -1, expectedIndex);
    QCOMPARE(reason.isEmpty(), expectedIndex >= 0);
}

QTEST_GUILESS_MAIN(TestControls)
#include "tst_controls.moc"
