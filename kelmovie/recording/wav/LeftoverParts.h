#pragma once

#include <QString>

namespace kel
{

/// Joins the parts of a sound recording whose process died before it could: of every file in `directory` that has parts
/// and does not exist itself. Parts of a recording that is still under way are left alone, and so is, with a line in
/// the log, what cannot be joined.
void joinLeftoverParts(const QString &directory);

} // namespace kel
