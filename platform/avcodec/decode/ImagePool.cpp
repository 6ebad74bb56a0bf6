#include "avcodec/decode/ImagePool.h"

#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace av
{

namespace
{

struct Free {
    void operator()(void *memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<uchar, Free>;

// One on screen, one being painted, one being processed further.
constexpr std::size_t kSpareCount = 3;

} // namespace

struct ImagePool::Store {
    std::mutex mutex;
    std::vector<Memory> spares;
    std::size_t bytes = 0; // of each spare

    Memory take(std::size_t wantedBytes)
    {
        std::lock_guard lock(mutex);
        if (bytes != wantedBytes)
            spares.clear();
        bytes = wantedBytes;
        if (spares.empty())
            return Memory(static_cast<uchar *>(std::malloc(wantedBytes)));
        Memory memory = std::move(spares.back());
        spares.pop_back();
        return memory;
    }

    void giveBack(Memory memory, std::size_t memoryBytes)
    {
        std::lock_guard lock(mutex);
        if (memoryBytes == bytes && spares.size() < kSpareCount)
            spares.push_back(std::move(memory));
    }
};

ImagePool::ImagePool()
    : m_store(std::make_shared<Store>())
{
}

QImage ImagePool::image(const QSize &size, QImage::Format format)
{
    struct Lease {
        std::shared_ptr<Store> store;
        Memory memory;
        std::size_t bytes;
    };
    const int bytesPerLine = size.width() * 4;
    const std::size_t bytes = static_cast<std::size_t>(bytesPerLine) * static_cast<std::size_t>(size.height());
    auto lease = std::make_unique<Lease>(Lease{m_store, m_store->take(bytes), bytes});
    if (!lease->memory)
        return {};
    uchar *const pixels = lease->memory.get();
    const auto release = [](void *info) {
        const std::unique_ptr<Lease> done(static_cast<Lease *>(info));
        done->store->giveBack(std::move(done->memory), done->bytes);
    };
    QImage image(pixels, size.width(), size.height(), bytesPerLine, format, release, lease.get());
    if (!image.isNull())
        lease.release(); // NOLINT(bugprone-unused-return-value): now owned by the image
    return image;
}

} // namespace av
