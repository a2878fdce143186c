// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/OpenInput.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Messages/Failure.h"

extern "C" {
#include <libavutil/avstring.h>
}

#include <cerrno>
#include <filesystem>
#include <new>
#include <system_error>

namespace host {
namespace {

// Of the kinds that the library knows those that are whole clips in one file: no playlists, devices or pictures.
constexpr const char* kKinds =
    "mov,matroska,avi,mxf,mpegts,mpeg,mpegvideo,ogg,flv,nut,ivf,yuv4mpegpipe,dv,h264,hevc,m4v,h263,obu,av1,vc1,asf,rm,"
    "gxf,"
    "wtv,dirac,dnxhd,mjpeg,mjpeg_2000,cavsvideo,nsv,rl2,roq,smk,bink,flic,film_cpk";
// And those that hold audio alone.
constexpr const char* kAudioKinds = "wav,w64,aiff,caf,mp3,aac,ac3,eac3,flac";

[[noreturn]] void refuse(const std::string& reason) {
  throw Failure(ExitCode::Input, reason);
}

int refuseFile(AVFormatContext* /*context*/, AVIOContext** /*file*/, const char* /*url*/, int /*flags*/,
               AVDictionary** /*options*/) {
  return AVERROR(EPERM);
}

// A pipe and such, where opening would wait for who writes it. What is not there fails to open.
bool isOtherThanFile(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  return std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
}

// The kind of a file by its bytes and, for kinds that these do not tell, its name.
const AVInputFormat* kindOf(AVIOContext* file, const std::string& path, Wanted wanted) {
  const AVInputFormat* kind = nullptr;
  const LoggedError logged;
  const int error = av_probe_input_buffer2(file, &kind, path.c_str(), nullptr, 0, 0);
  if (error < 0 && error != AVERROR_INVALIDDATA) refuse(logged.reason(error));
  const bool isKnown = error >= 0 && (av_match_list(kind->name, kKinds, ',') ||
                                      (wanted == Wanted::Audio && av_match_list(kind->name, kAudioKinds, ',')));
  if (!isKnown) refuse("it is no clip of a kind that can be read");
  return kind;
}

}  // namespace

AvInput openInput(const std::string& path, Wanted wanted) {
  if (isOtherThanFile(path)) refuse("it is no regular file");
  AVIOContext* file = nullptr;
  AVDictionary* options = nullptr;
  av_dict_set(&options, "protocol_whitelist", "file", 0);
  const int error = avio_open2(&file, ("file:" + path).c_str(), AVIO_FLAG_READ, nullptr, &options);
  av_dict_free(&options);
  if (error < 0) refuse(avErrorText(error));

  AvInput input(avformat_alloc_context());
  if (!input) {
    avio_closep(&file);
    throw std::bad_alloc();
  }
  input->pb = file;
  input->flags |= AVFMT_FLAG_CUSTOM_IO;
  input->io_open = refuseFile;
  const AVInputFormat* kind = kindOf(file, path, wanted);

  const LoggedError logged;
  AVFormatContext* opened = input.release();  // freed where opening fails, but for the file
  if (const int failed = avformat_open_input(&opened, path.c_str(), kind, nullptr); failed < 0) {
    avio_closep(&file);
    refuse(logged.reason(failed));
  }
  input.reset(opened);
  if (const int failed = avformat_find_stream_info(opened, nullptr); failed < 0) refuse(logged.reason(failed));
  return input;
}

}  // namespace host
