#include "avcodec/ffmpeg/InputFile.h"

#include "avcodec/ffmpeg/AvLog.h"
#include "avcodec/ffmpeg/Mp4SampleCount.h"

#include <QFile>
#include <QFileInfo>

namespace av
{

FormatContext openContainer(const QString &path, const char *formats, QString *error)
{
    useQtLog();
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
    AVDictionary *options = nullptr;
    av_dict_set(&options, "format_whitelist", formats, 0);
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    AVFormatContext *context = nullptr;
    const int code = avformat_open_input(&context, ("file:" + path.toUtf8()).constData(), nullptr, &options);
    av_dict_free(&options);
    if (code < 0)
        *error = errorText(code);
    return FormatContext(context);
}

FormatContext openInput(const QString &path, const char *formats, QString *error)
{
    FormatContext format = openContainer(path, formats, error);
    if (!format)
        return nullptr;
    const int code = avformat_find_stream_info(format.get(), nullptr);
    if (code < 0) {
        *error = errorText(code);
        return nullptr;
    }
    return format;
}

} // namespace av
