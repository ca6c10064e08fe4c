// S_SendData, the one door to the server, with the delayed queue and the
// sender that refuses to repeat itself.
#pragma once

#include <deque>
#include <string>

#include "history/history_text.h"
#include "history/session_log.h"
#include "output/debug_channel.h"
#include "output/output_writer.h"
#include "platform/platform.h"

namespace kelpa {

class Sender {
public:
    static constexpr std::size_t kQueueSlots = 20;
    static constexpr int kFirstQueueInterval = 42638;

    Sender(Socket& socket, SessionLog& log, OutputWriter& writer, HistoryText& history,
           DebugChannel& debug, Random& random, Host& host)
        : socket_(socket), log_(log), writer_(writer), history_(history), debug_(debug),
          random_(random), host_(host) {}

    // Rewrites ";;" to CR LF and drops "\." in place, then logs, echoes,
    // keeps and sends the text, only while connected. While the server
    // echoes (a password), only the text's line ends are logged, echoed and
    // kept.
    void S_SendData(std::string& X);

    // From the server's IAC WILL ECHO to its IAC WONT ECHO or a new
    // connection.
    void setServerEchoes(bool on) { serverEchoes_ = on; }
    bool serverEchoes() const { return serverEchoes_; }
    void s_queuedata(std::string& X);
    void S_SendDataNoSpam(std::string& X);

    // The tick of the timer "Queue": returns the next interval in ms.
    int queueTick();

    std::size_t queued() const { return QueueSlots.size(); }

private:
    Socket& socket_;
    SessionLog& log_;
    OutputWriter& writer_;
    HistoryText& history_;
    DebugChannel& debug_;
    Random& random_;
    Host& host_;

    // Entries wait in the order they came; one leaves per tick.
    std::deque<std::string> QueueSlots;
    std::string LastNoSpam;
    bool serverEchoes_ = false;
};

}  // namespace kelpa
