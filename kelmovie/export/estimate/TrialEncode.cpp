#include "export/estimate/TrialEncode.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "export/KelExportDependencies.h"

#include <QFileInfo>
#include <QImage>

#include <chrono>

namespace kel
{

TrialEncode::TrialEncode(const KelExportRequest &request, const QSize &size)
    : m_encoder(
          KelExportDependencies::real().createEncoder(request.format, size, path(), request.fps, request.quality, {}))
    , m_hasFailed(!m_directory.isValid() || !m_encoder || !m_encoder->isValid())
{
}

TrialEncode::~TrialEncode()
{
    if (m_work.valid())
        m_encoder->abort();
}

QString TrialEncode::path() const
{
    return m_directory.filePath(QStringLiteral("trial"));
}

bool TrialEncode::isBusy()
{
    if (!m_work.valid())
        return false;
    if (m_work.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return true;
    m_hasFailed = !m_work.get() || m_hasFailed;
    return false;
}

QString TrialEncode::errorString() const
{
    if (!m_hasFailed)
        return {};
    const QString error = m_encoder ? m_encoder->errorString() : m_directory.errorString();
    return error.isEmpty() ? QStringLiteral("there is no encoder") : error;
}

void TrialEncode::add(int frame, const QImage &image)
{
    m_work = std::async(std::launch::async,
                        [encoder = m_encoder.get(), frame, image] { return encoder->addFrame(quint64(frame), image); });
}

void TrialEncode::close(int end)
{
    m_isClosed = true;
    m_work = std::async(std::launch::async, [encoder = m_encoder.get(), end] {
        return encoder->repeatLastFrameUntil(quint64(end)) && encoder->close();
    });
}

qint64 TrialEncode::bytes() const
{
    return QFileInfo(path()).size();
}

} // namespace kel
