#include "export/ExportEncoder.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "export/BackgroundTasks.h"
#include "export/ExportWatch.h"

#include <QScopeGuard>
#include <QTemporaryDir>

#include <future>

namespace kel
{

namespace
{

/// From so many pixels on, it takes an encoder long to take over a picture.
constexpr qint64 kLargePicture = 4'000'000;

} // namespace

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

bool ExportEncoder::waitForRoom()
{
    return m_watch.wait([this](auto limit) { return m_encoder->waitForRoom(limit); });
}

bool ExportEncoder::addFrame(qint64 index, const QImage &image)
{
    if (!waitForRoom())
        return false;
    const auto add = [index, image](KelAVCodecEncoder &encoder) { return encoder.addFrame(quint64(index), image); };
    const bool isLarge = qint64(image.width()) * image.height() >= kLargePicture;
    return isLarge ? runBeside(add, [] {}) : add(*m_encoder);
}

bool ExportEncoder::repeatLastFrameUntil(qint64 end)
{
    return waitForRoom() && m_encoder->repeatLastFrameUntil(quint64(end));
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
    m_isComplete = runBeside([](KelAVCodecEncoder &encoder) { return encoder.close(); }, meanwhile);
    return m_isComplete;
}

/// On a thread of its own, which is left alone when the export is cancelled.
bool ExportEncoder::runBeside(Work work, const std::function<void()> &meanwhile)
{
    std::future<bool> result =
        std::async(std::launch::async, [encoder = m_encoder, work = std::move(work)] { return work(*encoder); });
    const auto leave = qScopeGuard([&] {
        if (!result.valid())
            return;
        m_encoder->abort();
        BackgroundTasks::run([left = result.share()]() mutable { left = {}; });
    });
    const bool isOver = m_watch.wait([&](auto limit) {
        meanwhile();
        return result.wait_for(limit) == std::future_status::ready;
    });
    return isOver && result.get();
}

} // namespace kel
