#pragma once

class QString;

/// Opens a folder in the desktop's file manager.
void openInFileManager(const QString &folder);
