#pragma once

#include "screen/KelScreenStreamer.h"

#include <utility>

namespace kel
{

/// What a backend hands out when it cannot capture: it sees nothing and says why.
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
