#include "library/PictureProcess.h"

#include "console/Terminal.h"

#include <QFileInfo>

using namespace kel;

namespace
{

constexpr int kLimitMs = 30000;
constexpr int kEndMs = 1000;

} // namespace

PictureProcess::PictureProcess(const QString &program, QObject *parent)
    : QObject(parent)
    , m_program(program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QString::fromLatin1(Terminal::windowlessPlatform()));
    m_process.setProcessEnvironment(environment);
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_limit.setSingleShot(true);
    m_limit.setInterval(kLimitMs);
    connect(&m_limit, &QTimer::timeout, &m_process, &QProcess::kill);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, &PictureProcess::finish);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) // in any other case it still finishes
            finish();
    });
}

PictureProcess::~PictureProcess()
{
    disconnect(&m_process, nullptr, this, nullptr);
    m_process.kill();
    m_process.waitForFinished(kEndMs);
}

void PictureProcess::start(const QString &dir, int frame)
{
    m_dir = dir;
    m_file = m_scratch.filePath(QStringLiteral("%1.png").arg(++m_number));
    m_limit.start();
    m_process.start(m_program, {QStringLiteral("frame"), dir, QString::number(frame), m_file});
}

void PictureProcess::finish()
{
    m_limit.stop();
    emit finished(m_dir, QFileInfo::exists(m_file) ? m_file : QString());
}
