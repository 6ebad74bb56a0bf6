#pragma once

#include "coreaudio/pulse/PulseConnection.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kel
{

/// A record stream of one source, initially stopped. It never moves to another source: it ends when its own vanishes.
/// Used by one thread at a time. Only open() waits for the server, for a limited time.
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
    /// False while the server leaves requests unanswered, although peek() was called often since.
    bool isAnswered() const;
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

    /// The oldest packet that was not dropped yet; with 0 frames when there is none whose time is known.
    Packet peek();
    void drop(std::uint32_t frames);

private:
    PulseRecordStream(std::shared_ptr<PulseConnection> connection, const pa_sample_spec &format,
                      const std::string &sink);
    bool connect(const PulseConnection::Source &source);
    bool setCorked(bool isCorked);
    void onData();
    void requestTiming();
    void onSinkInfo(const pa_sink_info *info);
    void requestStreamTiming();
    void onTiming(bool isKnown);
    void setTiming(double firstFrameUs, double nowUs);

    const std::shared_ptr<PulseConnection> m_connection;
    const pa_sample_spec m_format;
    const std::uint32_t m_frameSize;
    const std::string m_sink; // see PulseConnection::Source
    pa_stream *m_stream = nullptr;
    std::uint64_t m_framesRead = 0;
    std::vector<std::uint8_t> m_silence; // the data of a gap in the stream

    pa_operation *m_timingRequest = nullptr;    // null when none is under way
    pa_usec_t m_sinkLatencyUs = 0;              // of m_sink
    std::optional<double> m_firstFrameUs;       // time of the stream's first frame, as if there were no gaps
    std::optional<double> m_statedFirstFrameUs; // what the server stated last
    double m_timedAtUs = 0;                     // when m_firstFrameUs was last confirmed
    int m_unansweredPeeks = 0;                  // since the request
};

} // namespace kel
