#pragma once

#include "avcodec/KelAVCodecDecoder.h"

#include <QtGlobal>

#include <memory>

namespace av
{

class FrameDecoder;

/// What the decoders of all formats share; a format's class opens the file.
class VideoFileDecoder : public KelAVCodecDecoder
{
public:
    ~VideoFileDecoder() override;
    VideoFileDecoder(const VideoFileDecoder &) = delete;
    VideoFileDecoder &operator=(const VideoFileDecoder &) = delete;

    void close() override;
    bool isValid() const override;
    QImage decodeFrame(int index) override;
    QSize getFrameSize() const override;
    double getFPS() const override;
    int getFrameCount() const override;

    /// Frames that had to be decoded for the calls so far: tells how well they were served.
    quint64 decodedFrames() const;

protected:
    VideoFileDecoder();

    /// Opens the file with the decoder, or logs why not and stays not valid.
    void open(std::unique_ptr<FrameDecoder> decoder, const QString &path);

private:
    std::unique_ptr<FrameDecoder> m_decoder; // null: not valid
};

} // namespace av
