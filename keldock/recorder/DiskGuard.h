#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>

/// Watches the room on the disk that a recording goes to, so that it ends before the disk is full. GUI thread.
class DiskGuard : public QObject
{
    Q_OBJECT

public:
    struct Reading {
        qint64 freeBytes = -1; ///< below 0: not known
        qint64 usedBytes = 0;  ///< by the recording so far
        qint64 elapsedMs = 0;  ///< since the recording began
        bool exists = true;    ///< the recording's directory
    };

    static constexpr qint64 WarningBytes = 2'000'000'000;
    static constexpr qint64 WarningSeconds = 5 * 60;
    static constexpr qint64 StopBytes = 200'000'000;

    explicit DiskGuard(QObject *parent = nullptr);

    /// Replaces the look at the real disk.
    void setReader(std::function<Reading(const QString &dir)> reader) { m_reader = std::move(reader); }

    /// Whether a recording can begin: for a directory that need not exist yet.
    bool hasRoom(const QString &dir) const;

    /// Looks at the disk every other second from now on.
    void watch(const QString &dir);
    void stop();
    void check();

signals:
    /// Less room than WarningBytes, or than WarningSeconds will take at the present rate. Once for a recording.
    /// `secondsLeft` is below 0 where the rate is not known yet.
    void low(qint64 freeBytes, qint64 secondsLeft);
    /// The recording has to end now.
    void full();
    /// Somebody has deleted the directory, or moved it away.
    void directoryLost();

private:
    Reading readDisk(const QString &dir) const;

    std::function<Reading(const QString &dir)> m_reader;
    QString m_dir;
    QTimer m_timer;
    QElapsedTimer m_elapsed;
    bool m_hasWarned = false;
};
