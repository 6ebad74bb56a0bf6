#include "screen/KelScreenManager.h"

#include "screen/NativeScreenBackend.h"

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

KelScreenStreamer *KelScreenManager::createScreenStreamer(const QRect &rect)
{
    return m_backend->createStreamer(rect).release();
}

QString KelScreenManager::errorString() const
{
    return m_backend->errorString();
}

void KelScreenManager::setBackend(std::unique_ptr<KelScreenBackend> backend)
{
    m_backend = backend ? std::move(backend) : createNativeScreenBackend();
}
