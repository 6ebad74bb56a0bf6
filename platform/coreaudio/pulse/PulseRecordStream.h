#pragma once

#include "coreaudio/pulse/PulseConnection.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace kel
{

/// A stream of one source's sound, stopped at first. It never moves to another source: when its own goes away, it dies.
/// One thread uses it.
class PulseRecordStream
{
public:
    /// Null when the server does not provide such a stream.
    static std::shared_ptr<PulseRecordStream> open(std::shared_ptr<PulseConnection> connection,
                                                   const PulseConnection::Source &source, const pa_sample_spec &format);

    ~PulseRecordStream();
    PulseRecordStream(const PulseRecordStream &) = delete;
    PulseRecordStream &operator=(const PulseRecordStream &) = delete;

    bool isAlive() const;
    bool start() { return setCorked(false); }
    bool stop() { return setCorked(true); }

    std::uint32_t frameSize() const { return m_frameSize; }

    /// How many frames the server keeps for us.
    std::uint32_t bufferFrames() const;

    struct Packet {
        const std::uint8_t *data = nullptr; ///< valid until the packet is dropped
        std::uint32_t frames = 0;
        bool isSilent = false;
        std::uint64_t firstFrame = 0;      ///< counted from the start of the stream
        std::uint64_t recordedAtNs100 = 0; ///< time of its first frame on the steady clock, in units of 100 ns
    };

    /// The oldest packet that was not dropped yet; without frames when there is none.
    Packet peek();
    void drop(std::uint32_t frames);

private:
    PulseRecordStream(std::shared_ptr<PulseConnection> connection, const pa_sample_spec &format);
    bool connect(const PulseConnection::Source &source);
    bool setCorked(bool isCorked);
    std::uint64_t recordedAtUs();

    const std::shared_ptr<PulseConnection> m_connection;
    const pa_sample_spec m_format;
    const std::uint32_t m_frameSize;
    pa_stream *m_stream = nullptr;
    std::uint64_t m_framesTaken = 0;
    double m_firstFrameUs = 0; // when the first frame was recorded, had the device run without a break; 0: unknown
    std::vector<std::uint8_t> m_silence; // stands for a hole in the stream
};

} // namespace kel
