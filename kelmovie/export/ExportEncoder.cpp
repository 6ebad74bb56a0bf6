#include "export/ExportEncoder.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "export/ExportDirectory.h"
#include "export/ExportProgress.h"
#include "tasks/BackgroundTasks.h"

#include <QScopeGuard>

#include <future>

namespace kel
{

namespace
{

/// From this number of pixels on, addFrame() takes so long that it must not block the GUI thread.
constexpr qint64 kLargeImage = 4'000'000;

} // namespace

ExportEncoder::ExportEncoder(std::unique_ptr<KelAVCodecEncoder> encoder, std::shared_ptr<ExportDirectory> directory,
                             ExportProgress &progress)
    : m_encoder(std::move(encoder))
    , m_directory(std::move(directory))
    , m_progress(progress)
{
}

ExportEncoder::~ExportEncoder()
{
    if (!m_encoder || m_isComplete)
        return;
    m_encoder->abort();
    // The destructor of the encoder waits for its threads.
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
    return m_progress.wait([this](auto limit) { return m_encoder->waitForRoom(limit); });
}

bool ExportEncoder::addFrame(qint64 index, const QImage &image)
{
    if (!waitForRoom())
        return false;
    const auto add = [index, image](KelAVCodecEncoder &encoder) { return encoder.addFrame(quint64(index), image); };
    const bool isLarge = qint64(image.width()) * image.height() >= kLargeImage;
    return isLarge ? runInBackground(add, [] {}) : add(*m_encoder);
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
    m_isComplete = runInBackground([](KelAVCodecEncoder &encoder) { return encoder.close(); }, meanwhile);
    return m_isComplete;
}

/// Runs `work` on another thread. If the export is cancelled, that thread is left to BackgroundTasks.
bool ExportEncoder::runInBackground(Work work, const std::function<void()> &meanwhile)
{
    std::future<bool> result =
        std::async(std::launch::async, [encoder = m_encoder, work = std::move(work)] { return work(*encoder); });
    const auto release = qScopeGuard([&] {
        if (!result.valid())
            return;
        m_encoder->abort();
        BackgroundTasks::run([rest = result.share()]() mutable { rest = {}; });
    });
    const bool isOver = m_progress.wait([&](auto limit) {
        meanwhile();
        return result.wait_for(limit) == std::future_status::ready;
    });
    return isOver && result.get();
}

} // namespace kel
