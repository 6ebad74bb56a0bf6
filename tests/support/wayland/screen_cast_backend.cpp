// The part of the desktop portal that shows monitors of Mutter. Instead of a person, a test answers through the object
// /test (MutterSession.h).
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QHash>
#include <QPoint>
#include <QStringList>
#include <QVariantMap>

namespace
{

const QString kMutter = "org.gnome.Mutter.ScreenCast";
const QString kObject = "/org/freedesktop/portal/desktop";

struct Stream {
    uint node = 0;
    QVariantMap properties;
};

struct RestoreData {
    QString vendor;
    uint version = 1;
    QDBusVariant data;
};

} // namespace

Q_DECLARE_METATYPE(Stream)
Q_DECLARE_METATYPE(QList<Stream>)
Q_DECLARE_METATYPE(RestoreData)

QDBusArgument &operator<<(QDBusArgument &argument, const Stream &stream)
{
    argument.beginStructure();
    argument << stream.node << stream.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Stream &stream)
{
    argument.beginStructure();
    argument >> stream.node >> stream.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const RestoreData &data)
{
    argument.beginStructure();
    argument << data.vendor << data.version << data.data;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RestoreData &data)
{
    argument.beginStructure();
    argument >> data.vendor >> data.version >> data.data;
    argument.endStructure();
    return argument;
}

namespace
{

QDBusMessage callMutter(const QString &path, const QString &interface, const QString &method,
                        const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(kMutter, path, interface, method);
    call.setArguments(arguments);
    return QDBusConnection::sessionBus().call(call);
}

} // namespace

/// One cast: the portal's object for it.
class Session : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.Session")
    Q_PROPERTY(uint version READ version)

public:
    explicit Session(const QString &path)
        : m_path(path)
    {
        QDBusConnection::sessionBus().registerObject(path, this, QDBusConnection::ExportAllContents);
    }

    uint version() const { return 1; }

    /// Starts the cast of these monitors and answers `start` when all of their streams exist.
    void start(const QStringList &connectors, const QDBusMessage &start)
    {
        m_start = start;
        m_connectors = connectors;
        const QDBusReply<QDBusObjectPath> session =
            callMutter("/org/gnome/Mutter/ScreenCast", kMutter, "CreateSession", {QVariantMap()});
        m_mutterSession = session.value().path();
        auto bus = QDBusConnection::sessionBus();
        bus.connect(kMutter, m_mutterSession, kMutter + ".Session", "Closed", this, SLOT(onMutterClosed()));
        for (const QString &connector : connectors) {
            const QDBusReply<QDBusObjectPath> stream =
                callMutter(m_mutterSession, kMutter + ".Session", "RecordMonitor",
                           {connector, QVariantMap{{"cursor-mode", m_cursorMode}}});
            bus.connect(kMutter, stream.value().path(), kMutter + ".Stream", "PipeWireStreamAdded", this,
                        SLOT(onStreamAdded(uint, QDBusMessage)));
        }
        callMutter(m_mutterSession, kMutter + ".Session", "Start", {});
    }

    void setPointerMode(uint portalMode) { m_cursorMode = portalMode / 2; } // hidden, embedded, metadata

signals:
    void Closed();

public slots:
    void Close()
    {
        if (!m_mutterSession.isEmpty())
            callMutter(m_mutterSession, kMutter + ".Session", "Stop", {});
        deleteLater();
    }

private slots:
    void onMutterClosed()
    {
        m_mutterSession.clear();
        emit Closed();
        deleteLater();
    }

    void onStreamAdded(uint node, const QDBusMessage &message)
    {
        QDBusMessage get =
            QDBusMessage::createMethodCall(kMutter, message.path(), "org.freedesktop.DBus.Properties", "Get");
        get << kMutter + ".Stream"
            << "Parameters";
        const QDBusReply<QDBusVariant> parameters = QDBusConnection::sessionBus().call(get);
        const auto all = qdbus_cast<QVariantMap>(parameters.value().variant());
        m_streams.append({node, {{"position", all["position"]}, {"size", all["size"]}}});
        if (m_streams.size() < m_connectors.size())
            return;
        const RestoreData data{"test", 1, QDBusVariant(m_connectors)};
        QDBusConnection::sessionBus().send(
            m_start.createReply({0u, QVariantMap{{"streams", QVariant::fromValue(m_streams)},
                                                 {"persist_mode", 2u},
                                                 {"restore_data", QVariant::fromValue(data)}}}));
    }

private:
    const QString m_path;
    QString m_mutterSession;
    QStringList m_connectors;
    QDBusMessage m_start;
    QList<Stream> m_streams;
    uint m_cursorMode = 0;
};

class Backend : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.impl.portal.ScreenCast")
    Q_PROPERTY(uint version READ version)
    Q_PROPERTY(uint AvailableSourceTypes READ sourceTypes)
    Q_PROPERTY(uint AvailableCursorModes READ cursorModes)

public:
    uint version() const { return 4; }
    uint sourceTypes() const { return 1; }
    uint cursorModes() const { return 7; }

    /// What a person would answer: "decline", "fail", nothing ("wait"), or the connectors of the chosen monitors.
    QStringList answer = {"Meta-0"};
    int questions = 0;

    void closeAll()
    {
        for (Session *session : findChildren<Session *>()) {
            emit session->Closed();
            session->Close();
        }
    }

public slots:
    uint CreateSession(const QDBusObjectPath &, const QDBusObjectPath &session, const QString &, const QVariantMap &,
                       QVariantMap &results)
    {
        auto *const created = new Session(session.path());
        created->setParent(this);
        created->setObjectName(session.path());
        results = {{"session_id", session.path()}};
        return 0;
    }

    uint SelectSources(const QDBusObjectPath &, const QDBusObjectPath &session, const QString &,
                       const QVariantMap &options, QVariantMap &)
    {
        auto *const selected = findChild<Session *>(session.path());
        selected->setPointerMode(options["cursor_mode"].toUInt());
        m_restored.clear();
        if (options.contains("restore_data")) {
            const auto data = qdbus_cast<RestoreData>(options["restore_data"]);
            m_restored = qdbus_cast<QStringList>(data.data.variant());
        }
        return 0;
    }

    uint Start(const QDBusObjectPath &, const QDBusObjectPath &session, const QString &, const QString &,
               const QVariantMap &, QVariantMap &)
    {
        if (m_restored.isEmpty())
            ++questions;
        const QStringList chosen = m_restored.isEmpty() ? answer : m_restored;
        if (chosen == QStringList("decline"))
            return 1;
        if (chosen == QStringList("fail"))
            return 2;
        setDelayedReply(true);
        if (chosen != QStringList("wait"))
            findChild<Session *>(session.path())->start(chosen, message());
        return 0;
    }

private:
    QStringList m_restored;
};

class TestObject : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "test.ScreenCast")

public:
    explicit TestObject(Backend *backend)
        : m_backend(backend)
    {
    }

public slots:
    void setAnswer(const QStringList &answer) { m_backend->answer = answer; }
    int sessions() const { return m_backend->findChildren<Session *>().size(); }
    int questions() const { return m_backend->questions; }
    void closeAll() { m_backend->closeAll(); }

private:
    Backend *const m_backend;
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    qDBusRegisterMetaType<Stream>();
    qDBusRegisterMetaType<QList<Stream>>();
    qDBusRegisterMetaType<RestoreData>();
    Backend backend;
    TestObject test(&backend);
    QDBusConnection bus = QDBusConnection::sessionBus();
    const bool isReady = bus.registerObject(kObject, &backend, QDBusConnection::ExportAllContents) &&
                         bus.registerObject("/test", &test, QDBusConnection::ExportAllSlots) &&
                         bus.registerService("org.freedesktop.impl.portal.desktop.test");
    return isReady ? application.exec() : 1;
}

#include "screen_cast_backend.moc"
