#pragma once

#include <QString>

#include <string>

namespace kel
{

/// The path as Qt passes it to Windows: absolute, with the prefix that allows more than 260 characters.
std::wstring extendedPath(const QString &path);

} // namespace kel
