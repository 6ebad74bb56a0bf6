#include "avcodec/ffmpeg/InputFile.h"

#include "avcodec/ffmpeg/AvLog.h"
#include "avcodec/ffmpeg/Mp4SampleCount.h"

#include <QFile>
#include <QFileInfo>
#include <QIODevice>

#include <utility>

namespace av
{

namespace
{

constexpr int kBufferSize = 64 * 1024;

int readFrom(void *device, uint8_t *data, int size)
{
    const qint64 read = static_cast<QIODevice *>(device)->read(reinterpret_cast<char *>(data), size);
    return read > 0 ? int(read) : read == 0 ? AVERROR_EOF : AVERROR(EIO);
}

int64_t seekIn(void *device, int64_t offset, int whence)
{
    auto &input = *static_cast<QIODevice *>(device);
    if (whence == AVSEEK_SIZE)
        return input.size();
    if (whence != SEEK_SET)
        return AVERROR(ENOSYS);
    return input.seek(offset) ? offset : AVERROR(EIO);
}

/// Null `reader`: demuxes the file at `path`.
FormatContext open(const QString &path, AVIOContext *reader, const char *formats, QString *error)
{
    useQtLog();
    AVDictionary *options = nullptr;
    av_dict_set(&options, "format_whitelist", formats, 0);
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    AVFormatContext *context = avformat_alloc_context();
    if (context)
        context->pb = reader;
    const int code = avformat_open_input(&context, ("file:" + path.toUtf8()).constData(), nullptr, &options);
    av_dict_free(&options);
    if (code < 0)
        *error = errorText(code);
    return FormatContext(context);
}

FormatContext withStreamInfo(FormatContext format, QString *error)
{
    const int code = format ? avformat_find_stream_info(format.get(), nullptr) : 0;
    if (code < 0) {
        *error = errorText(code);
        return nullptr;
    }
    return format;
}

} // namespace

FormatContext openContainer(const QString &path, const char *formats, QString *error)
{
    // Pipes and devices would block, and directories confuse the demuxers.
    if (!QFileInfo(path).isFile()) {
        *error = QStringLiteral("not a regular file");
        return nullptr;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return nullptr;
    }
    if (statedMp4Samples(file) > file.size()) {
        *error = QStringLiteral("the file states more samples than it can hold");
        return nullptr;
    }
    return open(path, nullptr, formats, error);
}

FormatContext openInput(const QString &path, const char *formats, QString *error)
{
    return withStreamInfo(openContainer(path, formats, error), error);
}

IoContext readerOf(QIODevice &device)
{
    device.seek(0);
    auto *buffer = static_cast<unsigned char *>(av_malloc(kBufferSize));
    IoContext reader(buffer ? avio_alloc_context(buffer, kBufferSize, 0, &device, &readFrom, nullptr, &seekIn)
                            : nullptr);
    if (!reader)
        av_free(buffer);
    return reader;
}

FormatContext openInput(AVIOContext *reader, const char *formats, QString *error)
{
    if (!reader) {
        *error = errorText(AVERROR(ENOMEM));
        return nullptr;
    }
    return withStreamInfo(open(QString(), reader, formats, error), error);
}

} // namespace av
