// Cuts the status frames (24, items ended by 25, 26) out of the received
// stream and applies their items to the panel. A 24 that belongs to telnet
// (the option of IAC WILL/WONT/DO/DONT, or inside IAC SB ... IAC SE) is left
// in the text for the telnet interpreter, also when the IAC came with the
// previous chunk.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "output/debug_channel.h"
#include "status/frame_extractor.h"
#include "status/status_model.h"

namespace kelpa {

class StatusFrames : public FrameExtractor {
public:
    // Of a frame that never ends, this much is kept; the rest of its bytes
    // are still taken out of the stream.
    static constexpr std::size_t kMaxPendingFrame = 1 << 20;
    // A subnegotiation longer than this is taken to be over.
    static constexpr std::size_t kMaxSubnegotiation = 64 * 1024;

    StatusFrames(StatusModel& panel, DebugChannel& debug) : panel_(panel), debug_(debug) {}

    // Linear in the bytes of `data`, however the frames fall. The items of
    // the chunk's frames are gathered and reach the panel together before
    // it returns, ending as if applied one by one.
    void S_ExtractFrames(std::string& data) override;
    void newStream() override {
        if (state_ != State::Frame) state_ = State::Text;
    }
    // These two reach the panel before they return.
    void S_SplitFrame(std::string_view frame);
    void S_ApplyStatusItem(std::string_view item);

    // The start of a frame whose 26 has not come, without its 24.
    const std::string& PendingFrame() const { return pending_; }
    bool inFrame() const { return state_ == State::Frame; }

private:
    enum class State { Text, Iac, IacOption, Sub, SubIac, Frame };

    // Appends frame bytes, up to the bound.
    void keep(std::string_view bytes);
    void endFrame();
    // A frame whose 26 is in the chunk is read where it lies and `r` moves
    // behind it; false, and nothing done, when the chunk ends first.
    bool frameInPlace(const char* base, std::size_t& r, std::size_t n);
    // Gathers the item in the panel when it can; the bytes up to `end` may
    // be read.
    [[gnu::always_inline]] inline void applyItem(std::string_view item, const char* end);

    StatusModel& panel_;
    DebugChannel& debug_;
    State state_ = State::Text;
    std::size_t subBytes_ = 0;
    std::string pending_;
    std::size_t dropped_ = 0;
    // The text of the chunk, moved together once its items are applied
    // (they are read where they lie).
    std::vector<std::pair<std::size_t, std::size_t>> kept_;
};

}  // namespace kelpa
