#include "QVTestSway.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QThread>

#include <xcb/xcb.h>

#include <signal.h>
#include <unistd.h>

namespace
{

constexpr int startDeadlineMilliseconds = 20000;
constexpr uid_t unprivilegedId = 65534; // nobody, nogroup

bool runningAsRoot()
{
    return geteuid() == 0;
}

// A folder only the compositor's user may enter.
bool makePrivateFolder(const QString &path, QString *error)
{
    if (!QDir().mkpath(path) || !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)
        || (runningAsRoot() && chown(QFile::encodeName(path).constData(), unprivilegedId, unprivilegedId) != 0)) {
        *error = QStringLiteral("cannot prepare %1").arg(path);
        return false;
    }
    return true;
}

xcb_atom_t internAtom(xcb_connection_t *connection, const char *name)
{
    xcb_intern_atom_reply_t *reply
        = xcb_intern_atom_reply(connection, xcb_intern_atom(connection, 0, uint16_t(qstrlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    free(reply);
    return atom;
}

bool hasProtocol(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t protocols, xcb_atom_t protocol)
{
    xcb_get_property_reply_t *reply = xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, protocols, XCB_ATOM_ATOM, 0, 32), nullptr);
    bool found = false;
    if (reply && reply->format == 32) {
        const auto *atoms = static_cast<const xcb_atom_t *>(xcb_get_property_value(reply));
        for (int i = 0; i < xcb_get_property_value_length(reply) / 4; ++i)
            found = found || atoms[i] == protocol;
    }
    free(reply);
    return found;
}

} // namespace

QString QVTestSway::missingProgram()
{
    QStringList programs { QStringLiteral("sway"), QStringLiteral("swaymsg"), QStringLiteral("Xvfb"),
        QStringLiteral("grim") };
    if (runningAsRoot())
        programs.append(QStringLiteral("setpriv"));
    for (const QString &program : std::as_const(programs)) {
        if (QStandardPaths::findExecutable(program).isEmpty())
            return program;
    }
    return {};
}

std::unique_ptr<QVTestSway> QVTestSway::start(Outputs outputs, QString *error)
{
    std::unique_ptr<QVTestSway> sway(new QVTestSway);
    if (!sway->m_directory.isValid()
        || !QFile::setPermissions(sway->m_directory.path(),
            QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther)) {
        *error = QStringLiteral("cannot make a temporary folder");
        return nullptr;
    }
    const bool removable = outputs != Outputs::Headless;
    if (removable && !sway->startXvfb(error))
        return nullptr;
    if (!sway->startSway(outputs, error) || !sway->waitForSocket(error))
        return nullptr;
    // Outputs appear a moment after the socket.
    const qsizetype expected = removable ? 2 : 1;
    QDeadlineTimer deadline(startDeadlineMilliseconds);
    while (sway->outputs().size() < expected) {
        if (deadline.hasExpired()) {
            *error = QStringLiteral("sway has not made its outputs in time:\n%1").arg(sway->log());
            return nullptr;
        }
        QThread::msleep(20);
    }
    return sway;
}

QVTestSway::~QVTestSway()
{
    stop(m_sway);
    stop(m_xvfb);
}

void QVTestSway::stop(QProcess &process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    // Each process leads a group of its own (setsid): the group goes with it.
    const pid_t group = pid_t(process.processId());
    ::kill(-group, SIGTERM);
    if (!process.waitForFinished(5000)) {
        ::kill(-group, SIGKILL);
        process.waitForFinished(5000);
    }
}

bool QVTestSway::startXvfb(QString *error)
{
    m_xvfb.setChildProcessModifier([] { setsid(); });
    m_xvfb.setStandardErrorFile(QProcess::nullDevice());
    // -displayfd: the server picks a free display and writes its number to standard output.
    m_xvfb.start(QStringLiteral("Xvfb"),
        { QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-noreset"), QStringLiteral("-nolisten"),
            QStringLiteral("tcp"), QStringLiteral("-screen"), QStringLiteral("0"), QStringLiteral("1280x1024x24") });
    QDeadlineTimer deadline(startDeadlineMilliseconds);
    while (!m_xvfb.canReadLine() && !deadline.hasExpired() && m_xvfb.state() != QProcess::NotRunning)
        m_xvfb.waitForReadyRead(100);
    const QByteArray number = m_xvfb.readLine().trimmed();
    if (number.isEmpty()) {
        *error = QStringLiteral("Xvfb did not start");
        return false;
    }
    m_xDisplay = QLatin1Char(':') + QString::fromLatin1(number);
    // wlroots offers its windows' close button only when these atoms exist already.
    xcb_connection_t *connection = xcb_connect(m_xDisplay.toLatin1().constData(), nullptr);
    const bool connected = !xcb_connection_has_error(connection);
    for (const char *name : { "WM_PROTOCOLS", "WM_DELETE_WINDOW", "_NET_WM_NAME", "UTF8_STRING" }) {
        if (connected)
            internAtom(connection, name);
    }
    xcb_disconnect(connection);
    if (!connected)
        *error = QStringLiteral("cannot connect to Xvfb %1").arg(m_xDisplay);
    return connected;
}

bool QVTestSway::startSway(Outputs outputs, QString *error)
{
    const QString runtime = m_directory.filePath(QStringLiteral("runtime"));
    const QString home = m_directory.filePath(QStringLiteral("home"));
    if (!makePrivateFolder(runtime, error) || !makePrivateFolder(home, error))
        return false;
    const QString configPath = m_directory.filePath(QStringLiteral("sway.conf"));
    QFile config(configPath);
    if (!config.open(QIODevice::WriteOnly)
        || config.write("xwayland disable\ndefault_border none\nfocus_follows_mouse no\n") < 0) {
        *error = QStringLiteral("cannot write %1").arg(configPath);
        return false;
    }
    config.close();

    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), QProcessEnvironment::systemEnvironment().value(QStringLiteral("PATH")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("SWAYSOCK"), runtime + QStringLiteral("/sway.sock"));
    // wlroots makes the outputs in the order of its back ends.
    environment.insert(QStringLiteral("WLR_BACKENDS"),
        outputs == Outputs::Headless              ? QStringLiteral("headless")
            : outputs == Outputs::HeadlessThenX11 ? QStringLiteral("headless,x11")
                                                  : QStringLiteral("x11,headless"));
    environment.insert(QStringLiteral("WLR_HEADLESS_OUTPUTS"), QStringLiteral("1"));
    environment.insert(QStringLiteral("WLR_X11_OUTPUTS"), QStringLiteral("1"));
    environment.insert(QStringLiteral("WLR_LIBINPUT_NO_DEVICES"), QStringLiteral("1"));
    environment.insert(QStringLiteral("WLR_RENDERER"), QStringLiteral("pixman"));
    if (!m_xDisplay.isEmpty())
        environment.insert(QStringLiteral("DISPLAY"), m_xDisplay);
    m_sway.setProcessEnvironment(environment);
    m_sway.setWorkingDirectory(m_directory.path());
    m_sway.setChildProcessModifier([] { setsid(); });
    m_sway.setStandardOutputFile(m_directory.filePath(QStringLiteral("sway.log")));
    m_sway.setStandardErrorFile(m_directory.filePath(QStringLiteral("sway.log")), QIODevice::Append);
    QStringList arguments { QStringLiteral("sway"), QStringLiteral("-c"), configPath };
    if (runningAsRoot()) {
        arguments.prepend(QStringLiteral("--clear-groups"));
        arguments.prepend(QStringLiteral("--regid=%1").arg(unprivilegedId));
        arguments.prepend(QStringLiteral("--reuid=%1").arg(unprivilegedId));
    }
    const QString program = runningAsRoot() ? QStringLiteral("setpriv") : arguments.takeFirst();
    m_sway.start(program, arguments);
    if (!m_sway.waitForStarted(startDeadlineMilliseconds)) {
        *error = QStringLiteral("cannot start sway: %1").arg(m_sway.errorString());
        return false;
    }
    return true;
}

bool QVTestSway::waitForSocket(QString *error)
{
    const QDir runtime(m_directory.filePath(QStringLiteral("runtime")));
    QDeadlineTimer deadline(startDeadlineMilliseconds);
    QString socket;
    bool answers = false;
    while (!answers) {
        if (m_sway.state() == QProcess::NotRunning || deadline.hasExpired()) {
            *error = QStringLiteral("sway did not come up:\n%1").arg(log());
            return false;
        }
        QThread::msleep(20);
        const QStringList sockets = runtime.entryList({ QStringLiteral("wayland-*") }, QDir::System);
        socket = sockets.isEmpty() ? QString() : sockets.first();
        if (!socket.isEmpty())
            swaymsg({ QStringLiteral("-t"), QStringLiteral("get_version") }, &answers);
    }
    // sway cannot be told its socket's name: the client folder names it.
    const QString clients = runtimeDirectory();
    if (!QDir().mkpath(clients)
        || !QFile::setPermissions(clients, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner)
        || !QFile::link(runtime.filePath(socket), QDir(clients).filePath(socketName()))) {
        *error = QStringLiteral("cannot link the socket %1").arg(socket);
        return false;
    }
    return true;
}

QProcessEnvironment QVTestSway::clientEnvironment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeDirectory());
    environment.insert(QStringLiteral("WAYLAND_DISPLAY"), socketName());
    environment.remove(QStringLiteral("DISPLAY"));
    return environment;
}

QString QVTestSway::swaymsg(const QStringList &arguments, bool *ok) const
{
    QProcess process;
    process.start(QStringLiteral("swaymsg"),
        QStringList { QStringLiteral("-s"), m_directory.filePath(QStringLiteral("runtime/sway.sock")) } + arguments);
    *ok = process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
}

bool QVTestSway::command(const QString &command, QString *error) const
{
    bool ok = false;
    const QString output = swaymsg({ command }, &ok);
    if (!ok && error)
        *error = QStringLiteral("swaymsg %1: %2").arg(command, output);
    return ok;
}

QJsonArray QVTestSway::outputs() const
{
    bool ok = false;
    const QString output = swaymsg({ QStringLiteral("-r"), QStringLiteral("-t"), QStringLiteral("get_outputs") }, &ok);
    return ok ? QJsonDocument::fromJson(output.toUtf8()).array() : QJsonArray();
}

QImage QVTestSway::screenshot(const QString &output, QString *error) const
{
    const QString path = m_directory.filePath(output + QStringLiteral(".png"));
    QProcess grim;
    grim.setProcessEnvironment(clientEnvironment());
    grim.start(QStringLiteral("grim"), { QStringLiteral("-o"), output, path });
    if (!grim.waitForFinished(10000) || grim.exitStatus() != QProcess::NormalExit || grim.exitCode() != 0) {
        if (error)
            *error = QStringLiteral("grim -o %1: %2").arg(output, QString::fromLocal8Bit(grim.readAllStandardError()));
        return {};
    }
    return QImage(path);
}

bool QVTestSway::removeX11Output(QString *error) const
{
    xcb_connection_t *connection = xcb_connect(m_xDisplay.toLatin1().constData(), nullptr);
    const auto disconnect = qScopeGuard([connection] { xcb_disconnect(connection); });
    if (m_xDisplay.isEmpty() || xcb_connection_has_error(connection)) {
        *error = QStringLiteral("no Xvfb to remove an output from");
        return false;
    }
    const xcb_atom_t protocols = internAtom(connection, "WM_PROTOCOLS");
    const xcb_atom_t deleteWindow = internAtom(connection, "WM_DELETE_WINDOW");
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_query_tree_reply_t *tree = xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr);
    const auto freeTree = qScopeGuard([tree] { free(tree); });
    const xcb_window_t *children = tree ? xcb_query_tree_children(tree) : nullptr;
    xcb_window_t window = XCB_WINDOW_NONE;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree); ++i) {
        if (hasProtocol(connection, children[i], protocols, deleteWindow))
            window = children[i];
    }
    if (window == XCB_WINDOW_NONE) {
        *error = QStringLiteral("sway's x11 output window was not found");
        return false;
    }
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = protocols;
    message.data.data32[0] = deleteWindow;
    // wlroots may read the message into its queue while waiting for a reply and then
    // sleep until the socket has news: another message wakes it (and finds no window).
    const qsizetype before = outputs().size();
    QDeadlineTimer deadline(startDeadlineMilliseconds);
    while (outputs().size() == before) {
        if (deadline.hasExpired()) {
            *error = QStringLiteral("sway kept its x11 output:\n%1").arg(log());
            return false;
        }
        xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&message));
        xcb_flush(connection);
        QThread::msleep(50);
    }
    return true;
}

QString QVTestSway::log() const
{
    QFile file(m_directory.filePath(QStringLiteral("sway.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll().right(4000)) : QString();
}
