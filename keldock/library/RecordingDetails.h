#pragma once

#include "library/RecordingsFolder.h"

#include <KelMovie/KelRecordingState.h>

#include <QImage>
#include <QMetaType>
#include <QVector>

/// What the list shows about a recording besides name and date.
struct RecordingDetails {
    qint64 durationMs = 0;
    qint64 bytes = 0; ///< size on disk
    int frames = 0;   ///< logic frames according to the metadata
    KelRecordingState::State state = KelRecordingState::State::Complete;
    QImage thumbnail; ///< null if there is none yet
};

Q_DECLARE_METATYPE(RecordingDetails)
Q_DECLARE_METATYPE(QVector<RecordingsFolder::Entry>)
