#pragma once

#include <QStringList>

namespace kel
{

/// The program's arguments without its own name, with all Unicode characters intact. May be called before an
/// application object exists.
QStringList programArguments(int argc, char **argv);

} // namespace kel
