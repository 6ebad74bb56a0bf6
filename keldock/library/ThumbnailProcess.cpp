#include "library/ThumbnailProcess.h"

#include "console/Terminal.h"

#include <QFileInfo>

using namespace kel;

namespace
{

constexpr int kTimeoutMs = 30000;
constexpr int kKillTimeoutMs = 1000;

} // namespace

ThumbnailProcess::ThumbnailProcess(const QString &program, QObject *parent)
    : QObject(parent)
    , m_program(program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QString::fromLatin1(Terminal::windowlessPlatform()));
    m_process.setProcessEnvironment(environment);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(kTimeoutMs);
    connect(&m_timeout, &QTimer::timeout, &m_process, &QProcess::kill);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, &ThumbnailProcess::finish);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) // after any other error, finished() follows
            finish();
    });
}

ThumbnailProcess::~ThumbnailProcess()
{
    disconnect(&m_process, nullptr, this, nullptr);
    m_process.kill();
    m_process.waitForFinished(kKillTimeoutMs);
}

void ThumbnailProcess::start(const QString &dir, int frame)
{
    m_dir = dir;
    m_file = m_scratch.filePath(QStringLiteral("%1.png").arg(++m_number));
    m_timeout.start();
    m_process.start(m_program, {QStringLiteral("frame"), dir, QString::number(frame), m_file});
}

void ThumbnailProcess::finish()
{
    m_timeout.stop();
    emit finished(m_dir, QFileInfo::exists(m_file) ? m_file : QString());
}
