#include "recorder/DiskGuard.h"

#include "common/DirectorySize.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace
{

constexpr int kIntervalMs = 2000;
constexpr qint64 kRateSettleMs = 5000; // the first full frame makes the rate look much too high

QString existingParent(QString dir)
{
    while (!QFileInfo::exists(dir) && !QDir(dir).isRoot() && QFileInfo(dir).path() != dir)
        dir = QFileInfo(dir).path();
    return dir;
}

} // namespace

DiskGuard::DiskGuard(QObject *parent)
    : QObject(parent)
    , m_reader([this](const QString &dir) { return readDisk(dir); })
{
    m_timer.setInterval(kIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &DiskGuard::check);
}

bool DiskGuard::hasRoom(const QString &dir) const
{
    const qint64 freeBytes = m_reader(dir).freeBytes;
    return freeBytes < 0 || freeBytes >= kStopBytes;
}

void DiskGuard::watch(const QString &dir)
{
    m_dir = dir;
    m_hasWarned = false;
    m_elapsed.start();
    m_timer.start();
    check();
}

void DiskGuard::stop()
{
    m_timer.stop();
    m_dir.clear();
}

void DiskGuard::check()
{
    const Reading reading = m_reader(m_dir);
    if (!reading.exists) {
        m_timer.stop();
        emit directoryLost();
        return;
    }
    if (reading.freeBytes < 0)
        return;
    if (reading.freeBytes < kStopBytes) {
        m_timer.stop();
        emit full();
        return;
    }
    const bool isRateKnown = reading.elapsedMs >= kRateSettleMs && reading.usedBytes > 0;
    const double secondsLeft = isRateKnown ? double(reading.freeBytes - kStopBytes) * double(reading.elapsedMs) / 1000 /
                                                 double(reading.usedBytes)
                                           : -1;
    if (!m_hasWarned && (reading.freeBytes < kWarningBytes || (isRateKnown && secondsLeft < kWarningSeconds))) {
        m_hasWarned = true;
        emit low(reading.freeBytes, qint64(secondsLeft));
    }
}

DiskGuard::Reading DiskGuard::readDisk(const QString &dir) const
{
    Reading reading;
    reading.exists = QFileInfo(dir).isDir();
    const QStorageInfo disk(existingParent(dir));
    if (disk.isValid() && disk.isReady())
        reading.freeBytes = disk.bytesAvailable();
    if (m_timer.isActive()) {
        reading.usedBytes = qint64(directorySize(dir));
        reading.elapsedMs = m_elapsed.elapsed();
    }
    return reading;
}
