// The raw text of the whole run: every chunk received and every text sent,
// in the order of events. Never cut.
#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <string>
#include <string_view>

namespace kelpa {

// A place outside the program's own memory for the raw text, such as a file
// the kernel keeps in memory: appending to it fills no page tables, which
// on some machines costs more than the copy itself.
class HistoryStore {
public:
    virtual ~HistoryStore() = default;
    // Appends what it can and says how much; less than all ends its use.
    virtual std::size_t append(std::string_view bytes) = 0;
    // Up to `n` bytes from `pos`.
    virtual std::string read(std::size_t pos, std::size_t n) const = 0;
    // The same into `out`, which has room for `n`; how many were read. For
    // long reads into a buffer that is used again, so that no fresh memory
    // is touched.
    virtual std::size_t readInto(std::size_t pos, std::size_t n, char* out) const {
        const std::string bytes = read(pos, n);
        std::copy(bytes.begin(), bytes.end(), out);
        return bytes.size();
    }
};

// The text is the store's part (while there is a store) followed by the part
// in memory: once the store fails, the rest of the run stays in memory and
// nothing is lost.
class HistoryText {
public:
    // Position of the view; every append sets it to the length.
    std::size_t HistoryPos = 0;

    void append(std::string_view bytes) {
        if (store_ && memory_.empty()) {
            const std::size_t taken = store_->append(bytes);
            stored_ += taken;
            bytes.remove_prefix(taken);
        }
        if (!bytes.empty()) {
            if (memory_.capacity() - memory_.size() < bytes.size()) grow(bytes.size());
            memory_.append(bytes);
        }
        HistoryPos = size();
    }

    std::size_t size() const { return stored_ + memory_.size(); }

    // Up to `n` bytes from `pos`.
    std::string read(std::size_t pos, std::size_t n) const {
        std::string out;
        if (pos < stored_) {
            const std::size_t asked = std::min(n, stored_ - pos);
            out = store_->read(pos, asked);
            if (out.size() < asked) return out;  // no gaps: what could be read, up to there
            n -= asked;
            pos = stored_;
        }
        if (pos - stored_ < memory_.size()) out += std::string_view(memory_).substr(pos - stored_, n);
        return out;
    }
    std::string text() const { return read(0, size()); }
    // Up to `n` bytes from `pos` into `out`, which has room for them; how
    // many were read.
    std::size_t readInto(std::size_t pos, std::size_t n, char* out) const {
        std::size_t got = 0;
        if (pos < stored_) {
            const std::size_t asked = std::min(n, stored_ - pos);
            got = store_->readInto(pos, asked, out);
            if (got < asked) return got;
            n -= asked;
            pos = stored_;
        }
        if (pos - stored_ < memory_.size()) {
            const std::size_t m = std::min(n, memory_.size() - (pos - stored_));
            std::copy_n(memory_.data() + (pos - stored_), m, out + got);
            got += m;
        }
        return got;
    }

    // Where the text goes from now on; only while nothing is held yet.
    void setStore(HistoryStore* store) {
        if (size() == 0) store_ = store;
    }
private:
    // Benches empty the text between passes and keep its memory.
    friend struct HistoryTextProbe;

    // Doubling a long text copies all of it into fresh pages, a stall of the
    // event loop that grows with the run. Past the first megabyte, address
    // space for a long run is taken at once; pages cost memory only when
    // text reaches them.
    static constexpr std::size_t kSmall = std::size_t{1} << 20;
    static constexpr std::size_t kLongRun = std::size_t{1} << 30;

    HistoryStore* store_ = nullptr;
    std::size_t stored_ = 0;
    std::string memory_;

    void grow(std::size_t more) {
        const std::size_t need = memory_.size() + more;
        if (need <= kSmall) return;  // ordinary doubling
        const std::size_t cap = memory_.capacity();
        try {
            memory_.reserve(std::max(need, cap < kLongRun ? kLongRun : cap * 2));
        } catch (const std::bad_alloc&) {
            // No room for the reserve: ordinary growth still works.
        }
    }
};

}  // namespace kelpa
