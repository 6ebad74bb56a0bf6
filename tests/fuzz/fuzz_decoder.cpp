// Opens the input as a video and decodes some frames.

#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"

#include <QTemporaryFile>

#include <cstddef>
#include <cstdint>

using namespace av;

namespace
{

void decodeSome(VideoFileDecoder &decoder)
{
    const int count = decoder.getFrameCount();
    for (const int frame : {0, count - 1, count / 2, count / 2 - 1})
        decoder.decodeFrame(frame);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool quiet = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    Q_UNUSED(quiet)
    QTemporaryFile file;
    if (!file.open() || file.write(reinterpret_cast<const char *>(data), qint64(size)) != qint64(size) || !file.flush())
        return 0;
    h264Decoder h264(file.fileName(), h264Decoder::PreferH264DecodeParams(false));
    decodeSome(h264);
    ffv1Decoder ffv1(file.fileName());
    decodeSome(ffv1);
    return 0;
}
