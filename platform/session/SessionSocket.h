#pragma once

#include <QString>

class QLocalSocket;

/// Where the programs of one user meet, so that those of another user can neither listen in their place nor keep a lock
/// from them.
namespace kel::SessionSocket
{

/// A directory that only this user can write to, for lock files. Empty when there is none.
QString directory();

/// The name for QLocalServer and QLocalSocket under which programs of this user find each other. Empty when there is no
/// safe place for it.
QString serverName(const QString &name);

/// Whether the program at the other end of a connected socket runs as this user. False when that cannot be told.
bool isOwnUser(const QLocalSocket &socket);

} // namespace kel::SessionSocket
