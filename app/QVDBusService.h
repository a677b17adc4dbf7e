#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>

#include <functional>

// Corvane on the session bus, for scripts and desktops that bind a command:
// service and interface org.corvane.Corvane at /org/corvane/Corvane, with
// Perform(name), Release(name) and ListControls(). A name is a control's
// identifier or title, as for the command line's --perform.
class QVDBusService final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.corvane.Corvane")

public:
    // perform answers an empty string on success, else why not; list gives (identifier, title) pairs.
    using PerformHandler = std::function<QString(const QString &name, bool release)>;
    using ListHandler = std::function<QList<QStringList>()>;

    QVDBusService(PerformHandler perform, ListHandler list, QObject *parent = nullptr);
    ~QVDBusService() override;

    // False (and one line in the log) when there is no session bus or another Corvane has the name.
    bool registerOnSessionBus();

public Q_SLOTS:
    Q_SCRIPTABLE void Perform(const QString &name);
    Q_SCRIPTABLE void Release(const QString &name);
    // Every control that acts: a list of [identifier, title].
    Q_SCRIPTABLE QList<QStringList> ListControls();

private:
    void performOrReply(const QString &name, bool release);

    PerformHandler m_perform;
    ListHandler m_list;
    bool m_registered = false;
};
