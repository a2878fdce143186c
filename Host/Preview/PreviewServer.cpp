// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewServer.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/StandardErrorSilenced.h"
#include "Host/Preview/PreviewFrames.h"
#include "Host/Preview/PreviewMessages.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/ExecutionContext.h"
#include "Host/Rendering/Parameters.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <chrono>
#include <csignal>
#include <deque>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct ClientGone {};

// Its inputs come scaled, or onto one canvas, already.
Framing framingOfEffect(const PreviewHello& hello) {
  Framing framing = hello.setup.framing;
  framing.place.reset();
  if (hello.takesInputs) framing.size.reset();
  return framing;
}

// Its pixels as effects see them.
void count(const BitmapRef& bitmap, TCHistogram* histogram) {
  ExecutionContext context;
  const VRTImage flowing(bitmap);
  TCHistogramImage image;
  context.getPixelsFromImage(flowing, &image.baseAddress, &image.bytesPerRow);
  image.pixelsWide = bitmap->width;
  image.pixelsHigh = bitmap->height;
  image.bitsPerChannel = bitmap->bitsPerChannel;
  TCCountHistogram(image, *histogram);
}

bool isPortSet(QCPort& port, const Bytes& state, std::string* reason) {
  const auto list = PropertyListFromBytes(state, reason);
  return list && port.setStateValue(*list, reason);
}

class PreviewServer {
 public:
  PreviewServer(MessageSocket& client, const PreviewHello& hello);
  void begin();
  void carryOut(const InputsOrder& order);
  void carryOut(const RenderOrder& order);
  void carryOut(const CountOrder& order);
  void carryOut(const PreviewHello&) {}
  void carryOut(const DropOrder&) {}

 private:
  void send(const PreviewReport& report, const PictureParts& parts = {});
  template <class Work>
  void attempt(std::uint64_t id, const Work& work);
  void enter(std::uint64_t id, PreviewPhase phase);
  void setParameters(const std::vector<ParameterState>& states);
  const PreviewFrames::Frame& frameAt(std::uint64_t id, std::uint64_t frame);
  double connect(const RenderOrder& order, PreviewPicture* picture);
  void connectGiven(const GivenInputs& given);
  BitmapRef result(double time);
  void sendPicture(const PreviewRendered& rendered);

  MessageSocket& client_;
  const PreviewHello hello_;
  RemarksRedirected remarks_;
  std::unique_ptr<EffectRendering> effect_;
  std::unique_ptr<PreviewFrames> frames_;  // null where inputs are given
  PreviewPhase phase_ = PreviewPhase::Starting;
  std::map<std::string, Bytes> unset_;  // states by port
  PictureSize givenResultSize_;
  PreviewPicture last_;  // that was sent
};

PreviewServer::PreviewServer(MessageSocket& client, const PreviewHello& hello)
    : client_(client), hello_(hello), remarks_([this](const Remark& remark) { send(remark); }) {}

void PreviewServer::begin() {
  {
    const StandardErrorSilenced silence;  // whoever started this has said it
    loadEffects(hello_.setup.python);
  }
  const PreviewSetup& setup = hello_.setup;
  effect_ = std::make_unique<EffectRendering>(setup.effect, setup.inputs.size(), framingOfEffect(hello_), setup.depth);
  host::setParameters(*effect_, setup.pictures, {});
  PreviewOpened opened;
  if (!hello_.takesInputs) {
    frames_ = std::make_unique<PreviewFrames>(setup, *effect_, hello_.inputBytes);
    opened = frames_->opened(*effect_);
  }
  send(opened);
}

// A connection that does not take the whole of it is of no more use.
void PreviewServer::send(const PreviewReport& report, const PictureParts& parts) {
  if (!client_.send(messageOf(report, kPreviewEntries, parts))) throw ClientGone();
}

template <class Work>
void PreviewServer::attempt(std::uint64_t id, const Work& work) {
  try {
    work();
  } catch (const ClientGone&) {
    throw;
  } catch (const std::exception&) {
    const Failure failure = caughtFailure();
    send(PreviewFailed{id, phase_, failure.code, failure.what()});
  }
}

void PreviewServer::enter(std::uint64_t id, PreviewPhase phase) {
  phase_ = phase;
  send(PreviewProgress{id, phase});
}

// One that does not fit is tried again, and fails again, until there is another.
void PreviewServer::setParameters(const std::vector<ParameterState>& states) {
  for (const ParameterState& state : states) unset_[state.key] = state.state;
  std::string failure;
  for (auto next = unset_.begin(); next != unset_.end();) {
    QCPort* const port = effect_->patch().inputPortForKey(next->first);
    std::string reason;
    const bool isSet = next->second.empty() || !port || isPortSet(*port, next->second, &reason);
    if (!isSet && failure.empty()) failure = next->first + ": " + reason;
    next = isSet ? unset_.erase(next) : std::next(next);
  }
  if (!failure.empty()) throw Failure(ExitCode::Effect, "the effect \"" + effect_->effect() + "\": " + failure);
}

const PreviewFrames::Frame& PreviewServer::frameAt(std::uint64_t id, std::uint64_t frame) {
  if (!frames_) throw Failure(ExitCode::Unexpected, "a process without inputs was to read some");
  if (!frames_->has(frame)) enter(id, PreviewPhase::Reading);
  phase_ = PreviewPhase::Reading;
  return frames_->at(frame);
}

void PreviewServer::carryOut(const InputsOrder& order) {
  attempt(order.id, [&] {
    frameAt(order.id, order.frame);
    PreviewInputs inputs = frames_->scaled(order.frame, order.size);
    inputs.id = order.id;
    send(inputs);
  });
}

void PreviewServer::connectGiven(const GivenInputs& given) {
  if (given.bitmaps.size() != effect_->roles().inputs.size()) {
    throw Failure(ExitCode::Unexpected, "a rendering was given another number of pictures than it takes");
  }
  InputPictures pictures;
  pictures.bitmaps = given.bitmaps;
  pictures.depth = given.depth;
  effect_->connect(pictures);
  givenResultSize_ = given.resultSize;
}

// The frame's time.
double PreviewServer::connect(const RenderOrder& order, PreviewPicture* picture) {
  if (order.given) connectGiven(*order.given);
  if (!frames_) return 0;
  const PreviewFrames::Frame& frame = frameAt(order.id, order.frame);
  effect_->connect(frame.pictures);
  picture->space = frames_->space();
  if (frame.pictures.bitmaps.empty()) return frame.planned.time;
  picture->before = frame.pictures.bitmaps[0];
  picture->fileBefore = frame.pictures.fileBitmaps[0];
  picture->fileInfo = frame.pictures.infos[0];
  picture->beforeSize = {picture->before->width, picture->before->height};
  return frame.planned.time;
}

BitmapRef PreviewServer::result(double time) {
  BitmapRef result = effect_->result(time);
  const bool isScaled = hello_.takesInputs && effect_->kind() == EffectKind::Filter && hello_.setup.framing.size;
  return isScaled ? scaledBitmap(result, givenResultSize_, hello_.setup.framing.scaling) : result;
}

void PreviewServer::carryOut(const RenderOrder& order) {
  attempt(order.id, [&] {
    setParameters(order.changed);
    PreviewRendered rendered;
    rendered.id = order.id;
    rendered.isAhead = order.isAhead;
    PreviewPicture& picture = rendered.picture;
    picture.frame = order.frame;
    picture.isFull = frames_ != nullptr;
    const Clock::time_point begun = Clock::now();
    const double time = connect(order, &picture);
    rendered.reading = millisecondsSince(begun);
    phase_ = PreviewPhase::Rendering;
    if (frames_) enter(order.id, phase_);
    const Clock::time_point read = Clock::now();
    picture.result = result(order.time.value_or(time));
    rendered.rendering = millisecondsSince(read);
    picture.size = {picture.result->width, picture.result->height};
    picture.depth = effect_->depthOf(*picture.result);
    sendPicture(rendered);
  });
}

// What is kept for the next picture is kept alive here too: another bitmap is at another place then.
void PreviewServer::sendPicture(const PreviewRendered& rendered) {
  using Part = PictureParts::Part;
  const auto partOf = [](const auto& now, const auto& before) {
    return !now ? Part::None : now == before ? Part::Same : Part::New;
  };
  const PreviewPicture& picture = rendered.picture;
  const PictureParts parts{partOf(picture.before, last_.before), partOf(picture.fileBefore, last_.fileBefore),
                           partOf(picture.fileInfo, last_.fileInfo)};
  send(rendered, parts);
  last_ = picture;
}

void PreviewServer::carryOut(const CountOrder& order) {
  attempt(order.id, [&] {
    PreviewCounts counts;
    counts.id = order.id;
    counts.frame = last_.frame;
    if (last_.before) count(last_.before, &counts.input);
    if (last_.result) count(last_.result, &counts.result);
    send(counts);
  });
}

// The orders that have come, in their order.
class PreviewOrders {
 public:
  explicit PreviewOrders(MessageSocket& client) : client_(client) {}

  // Waits for one; nothing at the end. Takes in what else has come, so that what is to be dropped is not begun.
  std::optional<PreviewOrder> next() {
    Bytes message;
    do {
      if (waiting_.empty() && !client_.receive(&message)) return std::nullopt;
      if (waiting_.empty()) take(message);
      while (client_.receive(&message, std::chrono::milliseconds(0)) == MessageSocket::Received::Message) take(message);
    } while (waiting_.empty());
    PreviewOrder first = std::move(waiting_.front());
    waiting_.pop_front();
    return first;
  }

 private:
  void take(const Bytes& message) {
    PreviewOrder order = takePreviewOrder(message, kPreviewEntries);
    if (std::holds_alternative<DropOrder>(order)) return drop();
    if (auto* const render = std::get_if<RenderOrder>(&order)) carry(*render);
    waiting_.push_back(std::move(order));
  }

  // The states that a dropped order would have set are those of the next one.
  void drop() {
    std::deque<PreviewOrder> kept;
    for (PreviewOrder& order : waiting_) {
      auto* const render = std::get_if<RenderOrder>(&order);
      if (render) carry(*render);
      if (render && render->isAhead) {
        carried_ = std::move(render->changed);
        if (!client_.send(messageOf(PreviewDropped{render->id}, kPreviewEntries))) throw ClientGone();
      } else {
        kept.push_back(std::move(order));
      }
    }
    waiting_ = std::move(kept);
  }

  void carry(RenderOrder& order) {
    order.changed.insert(order.changed.begin(), carried_.begin(), carried_.end());
    carried_.clear();
  }

  MessageSocket& client_;
  std::deque<PreviewOrder> waiting_;
  std::vector<ParameterState> carried_;
};

MessageSocket connectionToClient() {
  for (const int descriptor : {kChildSocket, kPreviewEntries}) {
    int type = 0;
    socklen_t size = sizeof type;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &size) != 0 ||
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) != 0) {
      throw Failure(ExitCode::Usage, "preview: this is how the program starts itself");
    }
  }
  return MessageSocket(kChildSocket);
}

bool hasBegun(PreviewServer& server, MessageSocket& client) {
  try {
    server.begin();
    return true;
  } catch (const ClientGone&) {
    throw;
  } catch (const std::exception&) {
    const Failure failure = caughtFailure();
    client.send(messageOf(PreviewRefused{failure.code, failure.what()}, kPreviewEntries));
    return false;
  }
}

}  // namespace

void runPreviewServer() {
  MessageSocket client = connectionToClient();
  const MessageSocket entries(kPreviewEntries);  // closes it
  // There is nothing to clear up, and an effect that hangs hears no other signal.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  mostDescriptors();
  PreviewOrders orders(client);
  const auto first = orders.next();
  const auto* const hello = first ? std::get_if<PreviewHello>(&*first) : nullptr;
  if (!hello) return;
  try {
    PreviewServer server(client, *hello);
    if (!hasBegun(server, client)) return;
    while (const auto order = orders.next()) {
      std::visit([&](const auto& each) { server.carryOut(each); }, *order);
    }
  } catch (const ClientGone&) {
  }
}

}  // namespace host
