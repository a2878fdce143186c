// SPDX-License-Identifier: BSD-3-Clause
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <memory>

// Owners of the libraries' objects.
namespace host {

// An input that was opened, and closed with the file that its caller opened for it.
struct InputDeleter {
  void operator()(AVFormatContext* context) const {
    AVIOContext* file = context->pb;
    const bool isOwnFile = (context->flags & AVFMT_FLAG_CUSTOM_IO) != 0;
    avformat_close_input(&context);
    if (isOwnFile) avio_closep(&file);
  }
};
// An output; its file belongs to who opened it.
struct OutputDeleter {
  void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};
struct CodecDeleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct ParserDeleter {
  void operator()(AVCodecParserContext* parser) const { av_parser_close(parser); }
};
struct FrameDeleter {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct ScalerDeleter {
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

using AvInput = std::unique_ptr<AVFormatContext, InputDeleter>;
using AvOutput = std::unique_ptr<AVFormatContext, OutputDeleter>;
using AvCodec = std::unique_ptr<AVCodecContext, CodecDeleter>;
using AvParser = std::unique_ptr<AVCodecParserContext, ParserDeleter>;
using AvFrame = std::unique_ptr<AVFrame, FrameDeleter>;
using AvPacket = std::unique_ptr<AVPacket, PacketDeleter>;
using AvScaler = std::unique_ptr<SwsContext, ScalerDeleter>;

// New ones. They throw std::bad_alloc.
AvFrame newFrame();
AvPacket newPacket();

}  // namespace host
