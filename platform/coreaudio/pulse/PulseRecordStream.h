#pragma once

#include "coreaudio/pulse/PulseConnection.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace kel
{

/// A record stream of one source, initially stopped. It never moves to another source: it ends when its own vanishes.
/// Used by one thread at a time.
class PulseRecordStream
{
public:
    /// Null when the server cannot provide such a stream.
    static std::shared_ptr<PulseRecordStream> open(std::shared_ptr<PulseConnection> connection,
                                                   const PulseConnection::Source &source, const pa_sample_spec &format);

    ~PulseRecordStream();
    PulseRecordStream(const PulseRecordStream &) = delete;
    PulseRecordStream &operator=(const PulseRecordStream &) = delete;

    bool isAlive() const;
    bool start() { return setCorked(false); }
    bool stop() { return setCorked(true); }

    /// The size of the server's buffer, in frames.
    std::uint32_t bufferFrames() const;

    struct Packet {
        const std::uint8_t *data = nullptr; ///< valid until the packet is dropped
        std::uint32_t frames = 0;
        bool isSilent = false;
        std::uint64_t firstFrame = 0;      ///< its position since the start of the stream
        std::uint64_t recordedAtNs100 = 0; ///< time of its first frame on the steady clock, in units of 100 ns
    };

    /// The oldest packet that was not dropped yet; with 0 frames when there is none.
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
    std::uint64_t m_framesRead = 0;
    double m_firstFrameUs = 0;           // estimated time of the first frame, assuming no gaps; 0: unknown
    std::vector<std::uint8_t> m_silence; // the data of a gap in the stream
};

} // namespace kel
