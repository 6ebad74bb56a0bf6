#pragma once

#include "avcodec/KelAVCodecDecoder.h"

#include <QtGlobal>

#include <memory>

namespace av
{

class FrameDecoder;

/// Common base of the decoders; the class for each codec opens the file.
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

    /// Number of frames that had to be decoded for all calls so far; a measure of how efficient they were.
    quint64 decodedFrames() const;

protected:
    VideoFileDecoder();

    /// Opens the file with the decoder. On failure, logs the reason and stays invalid.
    void open(std::unique_ptr<FrameDecoder> decoder, const QString &path);

private:
    std::unique_ptr<FrameDecoder> m_decoder; // null: invalid
};

} // namespace av
