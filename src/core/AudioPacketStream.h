// The queue that carries the audio of one dictation from the audio thread to the task that sends
// it. The session controller makes one for each dictation and finishes it; destroying it does not
// finish it. Any thread may use the continuation, one task reads the stream. Nothing is ever
// dropped.
#pragma once

#include "platform/concurrency/AsyncStream.h"

#include <string>

namespace orlune {

/// The samples of one converted buffer: 16-bit signed integers in the machine's byte order, one
/// channel, 16000 per second, no header. Stored as the bytes of a WebSocket message, so that a
/// packet moves from the audio thread into the connection without a copy.
using AudioPacket = std::string;

class AudioPacketStream {
  public:
    AudioPacketStream() : continuation(stream.continuation()) {}

    AsyncStream<AudioPacket> stream;
    AsyncStream<AudioPacket>::Continuation continuation;
};

} // namespace orlune
