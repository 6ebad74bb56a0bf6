#pragma once

// Owners for all FFmpeg handles; nothing is freed manually elsewhere.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <QString>

#include <memory>

namespace av
{

struct Deleter {
    void operator()(AVFormatContext *context) const
    {
        if (context->iformat)
            avformat_close_input(&context);
        else
            avformat_free_context(context);
    }
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVIOContext *context) const
    {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVBufferRef *buffer) const { av_buffer_unref(&buffer); }
    void operator()(AVDictionary *dictionary) const { av_dict_free(&dictionary); }
    void operator()(SwsContext *context) const { sws_freeContext(context); }
    void operator()(SwrContext *context) const { swr_free(&context); }
};

template <typename T>
using Handle = std::unique_ptr<T, Deleter>;

using FormatContext = Handle<AVFormatContext>;
using CodecContext = Handle<AVCodecContext>;
using IoContext = Handle<AVIOContext>; // for avio_alloc_context(), not avio_open()
using Frame = Handle<AVFrame>;
using Packet = Handle<AVPacket>;
using BufferRef = Handle<AVBufferRef>;
using Dictionary = Handle<AVDictionary>;
using ScaleContext = Handle<SwsContext>;
using ResampleContext = Handle<SwrContext>;

/// FFmpeg's message for an AVERROR code.
inline QString errorText(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromLocal8Bit(text);
}

} // namespace av
