#include "session/SessionSocket.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace kel
{

namespace
{

/// Creates the directory if it is missing. A link does not count: its target may be exchanged.
bool isPrivate(const QString &directory)
{
    if (directory.isEmpty())
        return false;
    const QByteArray path = QFile::encodeName(directory);
    mkdir(path.constData(), S_IRWXU);
    struct stat status {
    };
    return lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

} // namespace

QString SessionSocket::directory()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (QDir::isAbsolutePath(runtime) && isPrivate(runtime))
        return runtime;
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    QDir().mkpath(cache);
    const QString own = cache + QStringLiteral("/keldock-session");
    return isPrivate(own) ? own : QString();
}

QString SessionSocket::serverName(const QString &name)
{
    const QString parent = directory();
    return parent.isEmpty() ? QString() : parent + QLatin1Char('/') + name;
}

bool SessionSocket::isOwnUser(const QLocalSocket &socket)
{
    const auto descriptor = int(socket.socketDescriptor());
#ifdef SO_PEERCRED
    ucred peer{};
    socklen_t size = sizeof peer;
    return getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return getpeereid(descriptor, &user, &group) == 0 && user == geteuid();
#endif
}

} // namespace kel
