#pragma once

#include <QString>

/// Shows a folder in the desktop's file manager.
void showInFileManager(const QString &folder);
