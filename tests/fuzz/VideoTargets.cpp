// The decoders of the screen track.

#include "FuzzTarget.h"

#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"

#include <QImage>

namespace
{

void decodeSome(av::VideoFileDecoder &decoder)
{
    if (!decoder.isValid())
        return;
    const int count = decoder.getFrameCount();
    for (const int frame : {0, count - 1, count / 2, count / 2 - 1, count}) {
        const QImage image = decoder.decodeFrame(frame);
        expect(image.isNull() || (frame >= 0 && frame < count), "no frames beyond the end");
    }
}

void h264(const QByteArray &input)
{
    h264Decoder decoder(writeScratch("screen_record.mp4", input), {"h264", {}});
    decodeSome(decoder);
}

void ffv1(const QByteArray &input)
{
    ffv1Decoder decoder(writeScratch("screen_record.mkv", input));
    decodeSome(decoder);
}

} // namespace

std::vector<FuzzTarget> videoTargets()
{
    return {{"h264", h264}, {"ffv1", ffv1}};
}
