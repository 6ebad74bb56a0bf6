#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QStringList>
#include <QVariantMap>

/// What a test does to its session of Mutter: moves the pointer, and answers the portal's questions.
class MutterSession
{
public:
    MutterSession()
        : m_input(call("org.gnome.Mutter.RemoteDesktop", "/org/gnome/Mutter/RemoteDesktop",
                       "org.gnome.Mutter.RemoteDesktop", "CreateSession")
                      .arguments()
                      .value(0)
                      .value<QDBusObjectPath>()
                      .path())
    {
        callInput("Start");
    }
    ~MutterSession() { callInput("Stop"); }

    void movePointer(const QPoint &position)
    {
        // Motion is relative; far enough up and left is the corner.
        callInput("NotifyPointerMotionRelative", {-100000.0, -100000.0});
        callInput("NotifyPointerMotionRelative", {double(position.x()), double(position.y())});
    }

    void click()
    {
        constexpr int leftButton = 0x110;
        callInput("NotifyPointerButton", {leftButton, true});
        callInput("NotifyPointerButton", {leftButton, false});
    }

    /// See Backend::answer in screen_cast_backend.cpp.
    static void setAnswer(const QStringList &answer) { callBackend("setAnswer", {answer}); }
    static int questions() { return callBackend("questions").arguments().value(0).toInt(); }
    static int sessions() { return callBackend("sessions").arguments().value(0).toInt(); }
    static void closeCasts() { callBackend("closeAll"); }

private:
    static QDBusMessage call(const QString &service, const QString &path, const QString &interface,
                             const QString &method, const QVariantList &arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        return QDBusConnection::sessionBus().call(message);
    }
    void callInput(const QString &method, const QVariantList &arguments = {})
    {
        call("org.gnome.Mutter.RemoteDesktop", m_input, "org.gnome.Mutter.RemoteDesktop.Session", method, arguments);
    }
    static QDBusMessage callBackend(const QString &method, const QVariantList &arguments = {})
    {
        return call("org.freedesktop.impl.portal.desktop.test", "/test", "test.ScreenCast", method, arguments);
    }

    const QString m_input;
};
