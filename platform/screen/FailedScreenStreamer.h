#pragma once

#include "screen/KelScreenStreamer.h"

#include <utility>

namespace kel
{

/// The streamer of a backend that cannot capture: captures nothing and reports the reason.
class FailedScreenStreamer final : public KelScreenStreamer
{
public:
    explicit FailedScreenStreamer(QString error)
        : m_error(std::move(error))
    {
    }

    bool hasFrameChanged() override { return false; }
    bool captureTo(QImage &) override { return false; }
    QString errorString() const override { return m_error; }

private:
    const QString m_error;
};

} // namespace kel
