#pragma once

#include <QStringList>

namespace kel
{

/// What the program was called with, its own name left out, whatever characters it holds. Works before there is an
/// application.
QStringList programArguments(int argc, char **argv);

} // namespace kel
