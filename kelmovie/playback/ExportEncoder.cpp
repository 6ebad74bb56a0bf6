#include "playback/ExportEncoder.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "playback/BackgroundTasks.h"
#include "playback/ExportWatch.h"

#include <QScopeGuard>
#include <QTemporaryDir>

#include <future>

ExportEncoder::ExportEncoder(std::unique_ptr<KelAVCodecEncoder> encoder, std::shared_ptr<QTemporaryDir> directory,
                             ExportWatch &watch)
    : m_encoder(std::move(encoder))
    , m_directory(std::move(directory))
    , m_watch(watch)
{
}

ExportEncoder::~ExportEncoder()
{
    if (!m_encoder || m_isComplete)
        return;
    m_encoder->abort();
    // Whoever lets go last has to wait for the threads of the encoder.
    BackgroundTasks::run([encoder = m_encoder, directory = m_directory]() mutable {
        encoder.reset();
        directory.reset();
    });
}

bool ExportEncoder::isValid() const
{
    return m_encoder && m_encoder->isValid();
}

QString ExportEncoder::errorString() const
{
    return m_encoder ? m_encoder->errorString() : QString();
}

bool ExportEncoder::addFrame(qint64 index, const QImage &image)
{
    return m_watch.wait([this](auto limit) { return m_encoder->waitForRoom(limit); }) &&
           m_encoder->addFrame(quint64(index), image);
}

bool ExportEncoder::holdUntil(qint64 end)
{
    return m_watch.wait([this](auto limit) { return m_encoder->waitForRoom(limit); }) &&
           m_encoder->holdUntil(quint64(end));
}

qint64 ExportEncoder::framesWritten() const
{
    return qint64(m_encoder->framesWritten());
}

qint64 ExportEncoder::salvage()
{
    m_encoder->close();
    const qint64 frames = framesWritten();
    m_encoder.reset();
    return frames;
}

bool ExportEncoder::close(const std::function<void()> &meanwhile)
{
    std::future<bool> closed = std::async(std::launch::async, [encoder = m_encoder] { return encoder->close(); });
    const auto leave = qScopeGuard([&] {
        if (!closed.valid())
            return;
        m_encoder->abort();
        BackgroundTasks::run([result = closed.share()]() mutable { result = {}; });
    });
    const bool isOver = m_watch.wait([&](auto limit) {
        meanwhile();
        return closed.wait_for(limit) == std::future_status::ready;
    });
    m_isComplete = isOver && closed.get();
    return m_isComplete;
}
