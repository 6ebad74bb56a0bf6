#pragma once

#include "library/RecordingsFolder.h"

#include <QImage>
#include <QMetaType>

/// What a list shows of a recording besides its name.
struct RecordingDetails {
    qint64 durationMs = 0;
    qint64 bytes = 0; ///< on disk
    int frames = 0;   ///< logic frames, as far as the metadata tells
    RecordingsFolder::State state = RecordingsFolder::State::Complete;
    QImage thumbnail; ///< null: none was made yet
};

Q_DECLARE_METATYPE(RecordingDetails)
Q_DECLARE_METATYPE(QVector<RecordingsFolder::Entry>)
