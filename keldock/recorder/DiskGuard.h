#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <utility>

/// Watches the free disk space during a recording, so that it can be stopped before the disk is full. GUI thread.
class DiskGuard : public QObject
{
    Q_OBJECT

public:
    struct Reading {
        qint64 freeBytes = -1; ///< negative: unknown
        qint64 usedBytes = 0;  ///< size of the recording so far
        qint64 elapsedMs = 0;  ///< since the recording started
        bool exists = true;    ///< whether the directory of the recording exists
    };

    static constexpr qint64 kWarningBytes = 2'000'000'000;
    static constexpr qint64 kWarningSeconds = 5 * 60;
    static constexpr qint64 kStopBytes = 200'000'000;

    explicit DiskGuard(QObject *parent = nullptr);

    /// Replaces the function that examines the disk.
    void setReader(std::function<Reading(const QString &dir)> reader) { m_reader = std::move(reader); }

    /// Whether there is enough space to start a recording in `dir`, which need not exist yet.
    bool hasRoom(const QString &dir) const;

    /// Checks the disk immediately and then every two seconds until stop().
    void watch(const QString &dir);
    void stop();
    /// Checks the disk now.
    void check();

signals:
    /// Less than kWarningBytes are free, or the space lasts less than kWarningSeconds at the current data rate. Emitted
    /// at most once per recording. `secondsLeft` is negative while the rate is unknown.
    void low(qint64 freeBytes, qint64 secondsLeft);
    /// Less than kStopBytes are free: the recording has to stop now.
    void full();
    /// The directory of the recording was deleted or moved.
    void directoryLost();

private:
    Reading readDisk(const QString &dir) const;

    std::function<Reading(const QString &dir)> m_reader;
    QString m_dir;
    QTimer m_timer;
    QElapsedTimer m_elapsed;
    bool m_hasWarned = false;
};
