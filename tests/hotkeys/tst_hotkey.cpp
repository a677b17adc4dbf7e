#include "QVEvent.h"
#include "QVFakeApplication.h"
#include "QVModifierFlags.h"

#include <QTest>

using namespace QVModifierFlag;

namespace
{
const QString exactKey = QStringLiteral("Hot Keys Require Exact Modifier Key Matches");
const QString capsLockKey = QStringLiteral("Hot Keys Account For Caps Lock Status");
} // namespace

class TestHotKey final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVHotKey::setSingletonIncrementingID(0); }
    void modifierFlagsMatch_data();
    void modifierFlagsMatch();
    void registration();
    void conflictsAndIdentifiers();
    void matchesEvent();
    void dictionaryRepresentation();
    void storedValuesThatNameNoKey_data();
    void storedValuesThatNameNoKey();
};

void TestHotKey::modifierFlagsMatch_data()
{
    QTest::addColumn<quint64>("first");
    QTest::addColumn<quint64>("second");
    QTest::addColumn<bool>("accountForCapsLock");
    QTest::addColumn<bool>("exact");
    QTest::addColumn<bool>("expected");

    QTest::newRow("caps lock ignored by default") << (Control | CapsLock) << Control << false << false << true;
    QTest::newRow("caps lock accounted for") << (Control | CapsLock) << Control << true << false << false;
    QTest::newRow("function key counts") << (Control | Function) << Control << false << false << false;
    QTest::newRow("sides ignored") << (Control | LeftControl) << (Control | RightControl) << false << false << true;
    QTest::newRow("sides under exact matching")
        << (Control | LeftControl) << (Control | RightControl) << false << true << false;
    QTest::newRow("no side bits match either side") << Control << (Control | RightControl) << false << true << true;
    QTest::newRow("both sides differ from one")
        << (Control | LeftControl | RightControl) << (Control | LeftControl) << false << true << false;
}

void TestHotKey::modifierFlagsMatch()
{
    QFETCH(quint64, first);
    QFETCH(quint64, second);
    QFETCH(bool, accountForCapsLock);
    QFETCH(bool, exact);
    QFETCH(bool, expected);

    QCOMPARE(QVIsModifierFlagsMatch(first, second, { !accountForCapsLock, exact }), expected);
    QVFakeApplication app; // the same through the user's settings, and as hot key equality
    app.set(capsLockKey, accountForCapsLock);
    app.set(exactKey, exact);
    QCOMPARE(QVIsModifierFlagsMatch(second, first), expected);
    const QVHotKey hotKey({}, QStringLiteral("^A"), 38, first);
    QCOMPARE(hotKey.isEqualToHotKey(QVHotKey({}, QStringLiteral("^A"), 38, second)), expected);
}

void TestHotKey::registration()
{
    QVFakeApplication app;
    const QList<QVHotKeyRegistration> &requests = app.platform.registrationRequests;
    auto hotKey
        = QVHotKey::hotKeyWithIdentifer({}, QStringLiteral("^→"), 114, Control | Function | CapsLock | LeftShift);
    QVERIFY(hotKey->testForDelegate(&app)); // proves it can be had, keeps nothing
    QVERIFY(!hotKey->isRegistered() && app.platform.activeHotKeys.isEmpty());
    QCOMPARE(requests.first().carbonModifiers, 0x21000u); // caps lock and sides dropped
    QCOMPARE(requests.first().capsLock, QVCapsLockRule::Ignored);

    QVERIFY(hotKey->registerForDelegate(&app));
    QVERIFY(hotKey->testForDelegate(&app)); // already registered: no request, no id used
    QCOMPARE(requests.size(), 2);
    QCOMPARE(QVHotKey::singletonIncrementingID(), 2u);
    hotKey.reset();
    QVERIFY2(app.platform.activeHotKeys.isEmpty(), "a hot key that goes away unregisters itself");

    // With caps lock accounted for, its state at recording must hold.
    app.set(capsLockKey, true);
    QVERIFY(QVHotKey({}, QStringLiteral("^→"), 114, Control | CapsLock).testForDelegate(&app));
    QCOMPARE(requests.last().capsLock, QVCapsLockRule::MustBeOn);
    QVERIFY(QVHotKey({}, QStringLiteral("^→"), 114, Control).testForDelegate(&app));
    QCOMPARE(requests.last().capsLock, QVCapsLockRule::MustBeOff);
}

void TestHotKey::conflictsAndIdentifiers()
{
    QVFakeApplication app;
    app.platform.refused.append({ 38, QVCarbonModifier::Control });
    QVHotKey refused({}, QStringLiteral("^A"), 38, Control);
    QString reason;
    QVERIFY(!refused.registerForDelegate(&app, false, &reason));
    QVERIFY(!reason.isEmpty() && !refused.isRegistered());
    QVERIFY(!refused.testForDelegate(&app));
    QCOMPARE(QVHotKey::singletonIncrementingID(), 2u); // refused attempts use ids too

    // Equal to a hot key in use: refused before the service is asked, no id used.
    auto inUse = QVHotKey::hotKeyWithIdentifer({}, QStringLiteral("^→"), 114, Control | CapsLock);
    app.hotKeysInUse = [&] { return QList<QVHotKeyRef> { inUse }; };
    QVERIFY(inUse->registerForDelegate(&app)); // no conflict with itself
    QVHotKey twin({}, QStringLiteral("^→"), 114, Control);
    reason.clear();
    QVERIFY(!twin.registerForDelegate(&app, false, &reason));
    QVERIFY(!reason.isEmpty());
    QCOMPARE(QVHotKey::singletonIncrementingID(), 3u);
    app.set(capsLockKey, true); // now a different combination
    QVERIFY(twin.testForDelegate(&app));

    QVHotKey::setSingletonIncrementingID(999999); // the counter wraps after 999999
    for (int attempt = 0; attempt < 3; ++attempt)
        QVERIFY(twin.testForDelegate(&app));
    QList<quint32> identifiers;
    for (const QVHotKeyRegistration &request : app.platform.registrationRequests.mid(4))
        identifiers.append(request.identifier);
    QCOMPARE(identifiers, QList<quint32>({ 999999u, 1000000u, 0u }));

    // A hot key kept without its keys stands in no one's way.
    app.set(capsLockKey, false);
    QVERIFY(!twin.registerForDelegate(&app));
    inUse->unregister();
    QVERIFY(twin.registerForDelegate(&app));
}

void TestHotKey::matchesEvent()
{
    QVFakeApplication app;
    QVHotKey hotKey({}, QStringLiteral("^⌥→"), 114, Control | Option);
    QVERIFY(hotKey.registerForDelegate(&app));
    const auto matches = [&](int type, int subtype, quint64 data1, quint16 keyCode, quint64 flags) {
        QVEvent event;
        event.type = type;
        event.subtype = subtype;
        event.data1 = data1;
        event.keyCode = keyCode;
        event.modifierFlags = flags;
        return hotKey.matchesEvent(&event);
    };
    const quint64 handle = hotKey.hotKeyReference();
    const int system = QVEvent::SystemDefined, pressed = QVEvent::HotKeyPressed;
    QVERIFY(matches(QVEvent::KeyDown, 0, 0, 114, Control | Option | CapsLock));
    QVERIFY(!matches(QVEvent::KeyDown, 0, 0, 113, Control | Option));
    QVERIFY(!matches(QVEvent::KeyDown, 0, 0, 114, Control));
    QVERIFY(matches(system, pressed, handle, 0, Control | Option));
    QVERIFY(matches(system, pressed, handle + (quint64(1) << 32), 0, Control | Option)); // low 32 bits only
    QVERIFY(!matches(system, pressed, handle + 1, 0, Control | Option));
    QVERIFY(!matches(system, pressed, handle, 0, Control)); // a shared grab: the modifiers pick the control
    QVERIFY(!matches(system, QVEvent::HotKeyReleased, handle, 114, Control | Option));
    QVERIFY(!hotKey.matchesEvent(nullptr));

    // Kept but not registered: inactive, whatever the event says.
    hotKey.unregister();
    QVERIFY(!matches(QVEvent::KeyDown, 0, 0, 114, Control | Option));
    QVERIFY(!matches(system, pressed, 0, 114, Control | Option));
}

void TestHotKey::dictionaryRepresentation()
{
    QVFakeApplication app;
    const quint64 flags = Control | Option | LeftControl | RightOption;
    const QVHotKeyRef copy = QVHotKey::hotKeyWithDictionaryRepresentation(
        QVHotKey(QStringLiteral("6F"), QStringLiteral("old"), 114, flags).dictionaryRepresentation());
    QVERIFY(copy && !copy->isRegistered());
    QCOMPARE(copy->visualRepresentation(), QStringLiteral("^⌥→")); // redone from key and flags
    QCOMPARE(copy->modifierFlags(), flags); // kept whole, side bits included
    app.set(exactKey, true);
    QCOMPARE(copy->visualRepresentation(), QStringLiteral("Ⓛ^Ⓡ⌥→"));
    QJsonObject incomplete = copy->dictionaryRepresentation();
    incomplete.remove(QStringLiteral("Key Code"));
    QCOMPARE(QVHotKey::hotKeyWithDictionaryRepresentation(incomplete)->keyCode(), quint16(0));
    incomplete.remove(QStringLiteral("Identifier"));
    QVERIFY(!QVHotKey::hotKeyWithDictionaryRepresentation(incomplete));
}

void TestHotKey::storedValuesThatNameNoKey_data()
{
    QTest::addColumn<QJsonValue>("keyCode");
    QTest::addColumn<QJsonValue>("modifierFlags");
    QTest::addColumn<QString>("reason"); // empty for a usable hot key

    const QJsonValue controlOption = double(Control | Option);
    QTest::newRow("lowest X key code") << QJsonValue(8) << controlOption << QString();
    QTest::newRow("highest X key code") << QJsonValue(255) << controlOption << QString();
    QTest::newRow("every known bit") << QJsonValue(
        114) << QJsonValue(double(CapsLock | Shift | Control | Option | Command | Function | DeviceDependentMask))
                                     << QString();
    // 65536 + 114 would grab Right if cut down to 16 bits.
    QTest::newRow("beyond 16 bits") << QJsonValue(65650) << controlOption << QStringLiteral("key code 65650");
    QTest::newRow("beyond X") << QJsonValue(256) << controlOption << QStringLiteral("key code 256");
    QTest::newRow("below X") << QJsonValue(7) << controlOption << QStringLiteral("key code 7");
    QTest::newRow("negative") << QJsonValue(-114) << controlOption << QStringLiteral("key code -114");
    QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << controlOption << QStringLiteral("key code 0");
    QTest::newRow("unknown high bit") << QJsonValue(114) << QJsonValue(double(Control | 0x1000000))
                                      << QStringLiteral("unknown bits 0x1000000");
    QTest::newRow("unknown low bit") << QJsonValue(114) << QJsonValue(double(Control | 0x100))
                                     << QStringLiteral("unknown bits 0x100");
    QTest::newRow("negative flags") << QJsonValue(114) << QJsonValue(-1) << QStringLiteral("unknown bits");
}

void TestHotKey::storedValuesThatNameNoKey()
{
    QFETCH(QJsonValue, keyCode);
    QFETCH(QJsonValue, modifierFlags);
    QFETCH(QString, reason);

    QVFakeApplication app;
    QJsonObject stored { { QStringLiteral("Identifier"), QStringLiteral("6F") },
        { QStringLiteral("Visual Representation"), QStringLiteral("odd") },
        { QStringLiteral("Modifier Flags"), modifierFlags } };
    if (!keyCode.isUndefined())
        stored.insert(QStringLiteral("Key Code"), keyCode);
    const QVHotKeyRef hotKey = QVHotKey::hotKeyWithDictionaryRepresentation(stored);
    QVERIFY(hotKey);
    QString refusal;
    const bool registered = hotKey->registerForDelegate(&app, false, &refusal);
    if (reason.isEmpty()) {
        QVERIFY2(registered, qPrintable(refusal));
        return;
    }
    QVERIFY(!registered && !hotKey->isRegistered());
    QVERIFY2(refusal.contains(reason), qPrintable(refusal));
    QVERIFY2(app.platform.registrationRequests.isEmpty(), "nothing that names no key reaches the service");
    QCOMPARE(hotKey->dictionaryRepresentation(), stored); // written back as it was
}

QTEST_GUILESS_MAIN(TestHotKey)
#include "tst_hotkey.moc"
