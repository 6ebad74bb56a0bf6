#pragma once

#include <QImage>

#include <memory>

namespace av
{

/// Creates images whose memory is reused after they are destroyed: for a full-screen image, the page faults of fresh
/// memory take longer than filling it. Images may outlive the pool and be destroyed on any thread.
class ImagePool
{
public:
    ImagePool();

    /// An image with undefined pixels of 32 bits each. Null if out of memory.
    QImage image(const QSize &size, QImage::Format format);

private:
    struct Store;
    std::shared_ptr<Store> m_store;
};

} // namespace av
