#pragma once

#include <QSettings>

/// What windows remember of themselves, apart from the settings that the user makes: places, folders, last choices.
/// One that cannot be read or written costs only that.
QSettings windowStore();
