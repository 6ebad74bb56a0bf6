#include "avcodec/ffmpeg/AvLog.h"

#include "logging/PlatformLog.h"

extern "C" {
#include <libavutil/log.h>
}

#include <QDebug>

namespace av
{

namespace
{

void logMessage(void *context, int level, const char *format, va_list arguments)
{
    if (level > AV_LOG_ERROR)
        return;
    char line[1024];
    int printPrefix = 1;
    av_log_format_line(context, level, format, arguments, line, sizeof line, &printPrefix);
    qCWarning(kel::logCodec).noquote() << "[FFmpeg]" << QString::fromLocal8Bit(line).trimmed();
}

} // namespace

void useQtLog()
{
    av_log_set_callback(logMessage);
}

} // namespace av
