#pragma once

#include <QSettings>

/// What windows remember between runs, apart from the user's settings: geometry, folders, last choices. Problems with
/// the file are ignored.
QSettings windowStore();
