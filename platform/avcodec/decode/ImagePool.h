#pragma once

#include <QImage>

#include <memory>

namespace av
{

/// Makes images whose memory is used again once they are gone: the system hands out a full-screen image page by page,
/// which takes longer than filling it. Images may outlive the pool and die on any thread.
class ImagePool
{
public:
    ImagePool();

    /// An image with undefined pixels, 32 bits each; null when there is no memory for it.
    QImage image(const QSize &size, QImage::Format format);

private:
    struct Store;
    std::shared_ptr<Store> m_store;
};

} // namespace av
