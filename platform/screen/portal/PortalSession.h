#pragma once

#include <QObject>
#include <QRect>
#include <QString>
#include <QVariant>
#include <QVector>

#include <chrono>
#include <functional>

namespace kel
{

class PortalRequest;

/// A screen cast of the desktop portal: asks the person at the screen, and tells which PipeWire streams show what. Its
/// deletion withdraws the question or ends the cast.
class PortalSession : public QObject
{
    Q_OBJECT

public:
    struct Stream {
        quint32 node = 0;
        QRect monitor; ///< in logical pixels of the desktop; null where the portal does not tell
    };

    struct Wish {
        bool severalMonitors = false;
        bool withPointer = true; ///< matters where the pointer can only be part of the picture
        QString restoreToken;    ///< of an earlier cast, which then starts without a question; may be empty
    };

    explicit PortalSession(QObject *parent = nullptr);
    ~PortalSession() override;

    void start(const Wish &wish);

    const QVector<Stream> &streams() const { return m_streams; }
    QString restoreToken() const { return m_restoreToken; } ///< for the next cast; empty without
    bool tellsPointer() const { return m_tellsPointer; }    ///< otherwise the pointer is part of the picture

    /// Opens a connection to PipeWire that sees the streams only. `done` gets its descriptor, which it owns, or -1 and
    /// an error text.
    using OnRemote = std::function<void(int descriptor, const QString &error)>;
    void openRemote(const OnRemote &done);

signals:
    /// One of these is emitted.
    void started();
    void declined();
    void failed(const QString &error); ///< an English sentence

    /// The desktop has ended the cast, because the person has stopped it or a monitor has changed.
    void closed();

private:
    using OnResults = std::function<void(const QVariantMap &results)>;
    void readProperties(const Wish &wish);
    void createSession(const Wish &wish);
    void selectSources(const Wish &wish);
    void startCast();
    void onStarted(const QVariantMap &results);
    void request(const QString &method, const QVariantList &arguments, const QVariantMap &options,
                 std::chrono::milliseconds limit, const OnResults &done);

    QString m_session; // its path; empty before it is created
    uint m_version = 0;
    uint m_cursorModes = 0;
    bool m_tellsPointer = false;
    QVector<Stream> m_streams;
    QString m_restoreToken;
};

} // namespace kel
