#include "session/SessionSocket.h"

#include <QByteArray>
#include <QDir>
#include <QLocalSocket>

#include <windows.h>

namespace kel
{

namespace
{

/// The user of a process, as a TOKEN_USER; empty when it cannot be told.
QByteArray userOf(HANDLE process)
{
    HANDLE token = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &token))
        return {};
    DWORD size = 0;
    GetTokenInformation(token, TokenUser, nullptr, 0, &size);
    QByteArray user(int(size), '\0');
    if (!GetTokenInformation(token, TokenUser, user.data(), size, &size))
        user.clear();
    CloseHandle(token);
    return user;
}

PSID sidOf(const QByteArray &user)
{
    return reinterpret_cast<const TOKEN_USER *>(user.constData())->User.Sid;
}

} // namespace

/// Each user has an own temporary directory.
QString SessionSocket::directory()
{
    return QDir::tempPath();
}

/// The names of pipes are common to all users, so connecting requires isOwnUser().
QString SessionSocket::serverName(const QString &name)
{
    return name;
}

bool SessionSocket::isOwnUser(const QLocalSocket &socket)
{
    ULONG serverId = 0;
    if (!GetNamedPipeServerProcessId(reinterpret_cast<HANDLE>(socket.socketDescriptor()), &serverId))
        return false;
    HANDLE server = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, serverId);
    if (!server)
        return false; // of another user
    const QByteArray theirs = userOf(server);
    CloseHandle(server);
    const QByteArray ours = userOf(GetCurrentProcess());
    return !theirs.isEmpty() && !ours.isEmpty() && EqualSid(sidOf(theirs), sidOf(ours));
}

} // namespace kel
