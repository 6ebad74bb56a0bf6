#include "screen/KelScreenManager.h"

#include "screen/NativeScreenBackend.h"

#include <algorithm>

using namespace kel;

std::unique_ptr<KelScreenPreparation> KelScreenBackend::prepare(const QRect &, bool,
                                                                const KelScreenPreparation::Done &done)
{
    done({});
    return nullptr;
}

std::unique_ptr<KelCursorSource> KelScreenBackend::createCursorSource(const QRect &)
{
    return nullptr;
}

KelScreenManager::KelScreenManager()
    : m_backend(createNativeScreenBackend())
{
}

KelScreenManager::~KelScreenManager() = default;

KelScreenManager *KelScreenManager::instance()
{
    static KelScreenManager manager;
    return &manager;
}

std::unique_ptr<KelScreenPreparation> KelScreenManager::prepare(const QRect &rect, bool withPointer,
                                                                const KelScreenPreparation::Done &done)
{
    return m_backend->prepare(rect, withPointer, done);
}

KelScreenStreamer *KelScreenManager::createScreenStreamer(const QRect &rect, bool withPointer)
{
    return m_backend->createStreamer(rect, withPointer).release();
}

std::shared_ptr<KelCursorSource> KelScreenManager::cursorSource(const QRect &rect)
{
    const std::lock_guard<std::mutex> lock(m_cursorMutex);
    auto &sources = m_cursorSources;
    for (const auto &known : sources) {
        auto source = known.first == rect ? known.second.lock() : nullptr;
        if (source)
            return source;
    }
    sources.erase(std::remove_if(sources.begin(), sources.end(), [](const auto &one) { return one.second.expired(); }),
                  sources.end());
    std::shared_ptr<KelCursorSource> source = m_backend->createCursorSource(rect);
    if (source)
        sources.emplace_back(rect, source);
    return source;
}

QString KelScreenManager::backendName() const
{
    return m_backend->name();
}

bool KelScreenManager::isPointerInFrames() const
{
    return m_backend->isPointerInFrames();
}

QString KelScreenManager::errorString() const
{
    return m_backend->errorString();
}

void KelScreenManager::setBackend(std::unique_ptr<KelScreenBackend> backend)
{
    {
        const std::lock_guard<std::mutex> lock(m_cursorMutex);
        m_cursorSources.clear();
    }
    m_backend = backend ? std::move(backend) : createNativeScreenBackend();
}
