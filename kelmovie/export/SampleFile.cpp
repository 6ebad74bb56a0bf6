#include "export/SampleFile.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "export/KelExportSeams.h"

#include <QFileInfo>
#include <QImage>

#include <chrono>

namespace kel
{

SampleFile::SampleFile(const KelExportRequest &request, const QSize &size)
    : m_encoder(KelExportSeams::real().createEncoder(request.format, size, path(), request.fps, request.quality, {}))
    , m_hasFailed(!m_directory.isValid() || !m_encoder || !m_encoder->isValid())
{
}

SampleFile::~SampleFile()
{
    if (m_work.valid())
        m_encoder->abort();
}

QString SampleFile::path() const
{
    return m_directory.filePath(QStringLiteral("sample"));
}

bool SampleFile::isBusy()
{
    if (!m_work.valid())
        return false;
    if (m_work.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        return true;
    m_hasFailed = !m_work.get() || m_hasFailed;
    return false;
}

QString SampleFile::errorString() const
{
    if (!m_hasFailed)
        return {};
    const QString error = m_encoder ? m_encoder->errorString() : m_directory.errorString();
    return error.isEmpty() ? QStringLiteral("there is no encoder") : error;
}

void SampleFile::add(int frame, const QImage &picture)
{
    m_work = std::async(std::launch::async, [encoder = m_encoder.get(), frame, picture] {
        return encoder->addFrame(quint64(frame), picture);
    });
}

void SampleFile::close(int end)
{
    m_isClosed = true;
    m_work = std::async(std::launch::async, [encoder = m_encoder.get(), end] {
        return encoder->repeatLastFrameUntil(quint64(end)) && encoder->close();
    });
}

qint64 SampleFile::bytes() const
{
    return QFileInfo(path()).size();
}

} // namespace kel
