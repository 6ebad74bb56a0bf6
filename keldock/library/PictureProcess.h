#pragma once

#include <QObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

/// Has single pictures of recordings composed by the command line program in a process of its own: neither the time
/// that takes nor a damaged file that ends it reaches the window. One at a time.
class PictureProcess : public QObject
{
    Q_OBJECT

public:
    /// `program` is the command line program.
    explicit PictureProcess(const QString &program, QObject *parent = nullptr);
    ~PictureProcess() override;

    bool isBusy() const { return m_process.state() != QProcess::NotRunning; }
    /// Not while busy. Ends in finished(), in every case.
    void start(const QString &dir, int frame);

signals:
    /// `file` is the receiver's to delete; empty when there is no picture.
    void finished(const QString &dir, const QString &file);

private:
    void finish();

    const QString m_program;
    QTemporaryDir m_scratch;
    QProcess m_process;
    QTimer m_limit;
    QString m_dir;
    QString m_file;
    int m_number = 0;
};
