#pragma once

#include <QObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

/// Composes frames of recordings in another process, by the command line program, so that neither the computing time
/// nor a crash on a damaged file affects the window. One frame at a time. GUI thread.
class ThumbnailProcess : public QObject
{
    Q_OBJECT

public:
    /// `program` is the command line program.
    explicit ThumbnailProcess(const QString &program, QObject *parent = nullptr);
    ~ThumbnailProcess() override;

    bool isBusy() const { return m_process.state() != QProcess::NotRunning; }
    /// Composes a frame, and always emits finished() at the end. Must not be called while busy.
    void start(const QString &dir, int frame);

signals:
    /// `file` is the image, which the receiver must delete; empty on failure.
    void finished(const QString &dir, const QString &file);

private:
    void finish();

    const QString m_program;
    QTemporaryDir m_scratch;
    QProcess m_process;
    QTimer m_timeout;
    QString m_dir;
    QString m_file;
    int m_number = 0;
};
